/* The column API from C: formats three days and reads them back. */
#include <string.h>

#include "zvcolumn.h"

int columnRoundTripFromC(void) {
    ZvColumnHost *host = zvColumnHostNew(NULL, NULL);
    if (!host) return -1;
    ZvColumnSpec format = {"NLDATE", "de_DE", NULL, 20, -1, 0, 0};
    const double days[3] = {0, 23440, -1};
    char fields[3 * 64];
    int32_t lengths[3];
    char error[100];
    int wrong = zvColumnFieldBytes(host, &format) > 64 ||
                zvColumnFormat(host, &format, days, 3, fields, 64, lengths, NULL, error, sizeof error) != ZV_COLUMN_DONE;
    char bytes[3 * 64];
    int64_t offsets[4] = {0};
    for (int i = 0; i < 3 && !wrong; ++i) {
        memcpy(bytes + offsets[i], fields + 64 * i, (size_t)lengths[i]);
        offsets[i + 1] = offsets[i] + lengths[i];
    }
    ZvColumnSpec read = {"@NLDATE", "de_DE", NULL, 20, -1, 0, 0};
    double back[3];
    int32_t statuses[3];
    wrong = wrong || zvColumnRead(host, &read, bytes, offsets, 3, back, NULL, statuses, error, sizeof error) != 0;
    for (int i = 0; i < 3 && !wrong; ++i) wrong = statuses[i] != 0 || back[i] != days[i];
    ZvColumnSpec bad = {"NLNOPE", NULL, NULL, -1, -1, 0, 0};
    wrong = wrong || zvColumnFormat(host, &bad, days, 3, fields, 64, NULL, NULL, error, sizeof error) != ZV_COLUMN_NOT_RUN ||
            strcmp(error, "no format or informat named NLNOPE") != 0;
    zvColumnHostFree(host);
    return wrong;
}
