// A program on the installed reference host: NLDATE of 5 March 2024 in de_DE, in brackets.
#include <cstdio>

#include "zvhost.hpp"

int main() {
    zvhost::Host host;
    if (!host.loadModule()) return 2;
    const FormatTableRow *row = zvhost::findRow(host.instance()->formatTable, "NLDATE");
    if (!row) return 3;
    zvhost::CallSpec spec;
    spec.locale = "de_DE";
    spec.width = 20;
    const zvhost::FormatResult r = zvhost::runFormat(host, *row, spec, 23440.0);
    if (r.status != 0 || !r.error.empty()) return 4;
    std::printf("[%s]\n", r.utf8.c_str());
    return 0;
}
