// The format table as data: one line a row, in the published order.
#include "frame/table.hpp"

#include "frame/entries.hpp"
#include "frame/frame.hpp"

namespace zv {
namespace {


struct Limits {
    uint32_t minWidth, maxWidth, defaultWidth, maxDecimals, defaultDecimals, lastWord;
};

constexpr void setName(FormatTableRow &row, const char *name) {
    int i = 0;
    for (; name[i] != 0 && i < 32; ++i) row.name[i] = static_cast<ZvChar>(name[i]);
    for (; i < 32; ++i) row.name[i] = u' ';
}

constexpr FormatTableRow makeRow(const char *name, uint32_t sourceKind, uint32_t producedKind,
                                 ZvWideEntry wide, ZvByteEntry byte, Limits l) {
    FormatTableRow row{};
    setName(row, name);
    row.sourceKind = sourceKind;
    row.producedKind = producedKind;
    row.wideEntry = wide;
    row.minWidth = l.minWidth;
    row.maxWidth = l.maxWidth;
    row.defaultWidth = l.defaultWidth;
    row.minDecimals = 0;
    row.maxDecimals = l.maxDecimals;
    row.defaultDecimals = l.defaultDecimals;
    row.byteEntry = byte;
    row.lastWord = l.lastWord;
    return row;
}

constexpr FormatTableRow informat(const char *name, ZvWideEntry wide, Limits l) {
    return makeRow(name, ZV_KIND_TEXT, ZV_KIND_NUMBER, wide, nullptr, l);
}

// The byte entry of a format is the shared bridge bound to the row's wide
// routine and justification.
#define ZV_DATE(name, wide, ...)                                                               \
    makeRow(name, ZV_KIND_NUMBER, ZV_KIND_TEXT, entry::wide,                                   \
            &byteEntry<entry::wide, Justify::Left>,                                             \
            Limits{__VA_ARGS__})
#define ZV_NUMBER(name, wide, ...)                                                             \
    makeRow(name, ZV_KIND_NUMBER, ZV_KIND_TEXT, entry::wide,                                   \
            &byteEntry<entry::wide, Justify::Right>,                                            \
            Limits{__VA_ARGS__})
#define ZV_READ(name, wide, ...) informat(name, entry::wide, Limits{__VA_ARGS__, 0})

//                                  min  max  def  maxD defD last
#define ZV_READ_MNI(code) ZV_READ("@NLMNI" #code, readNlMni##code, 8, 32, 12, 28, 2),
#define ZV_READ_MNL(code) ZV_READ("@NLMNL" #code, readNlMnl##code, 8, 32, 12, 28, 2),
#define ZV_WRITE_MNI(code) ZV_NUMBER("NLMNI" #code, writeNlMni##code, 8, 32, 12, 28, 2, 0),
#define ZV_WRITE_MNL(code) ZV_NUMBER("NLMNL" #code, writeNlMnl##code, 8, 32, 12, 28, 2, 0),

constexpr FormatTableRow kTable[kFormatTableRows + 1] = {
    // ---- informats -----------------------------------------------------------
    ZV_READ("@NLDATE", readNlDate, 10, 200, 10, 0, 0),
    ZV_READ("@NLDATEW", readNlDate, 16, 200, 20, 0, 0),
    ZV_READ("@NLDATM", readNlDatetime, 19, 200, 19, 3, 0),
    ZV_READ("@NLDATMAP", readNlDatetime, 17, 200, 32, 3, 0),
    ZV_READ("@NLDATMW", readNlDatetime, 34, 200, 40, 3, 0),
    ZV_FORMAT_CURRENCIES(ZV_READ_MNI)
    ZV_FORMAT_CURRENCIES(ZV_READ_MNL)
    ZV_READ("@NLMNY", readNlMny, 1, 32, 9, 31, 0),
    ZV_READ("@NLMNYI", readNlMnyI, 1, 32, 9, 31, 0),
    ZV_READ("@NLNUM", readNlNum, 1, 32, 6, 31, 0),
    ZV_READ("@NLNUMI", readNlNumI, 1, 32, 6, 31, 0),
    ZV_READ("@NLPCT", readNlPct, 1, 32, 6, 31, 0),
    ZV_READ("@NLPCTI", readNlPctI, 1, 32, 6, 31, 0),
    ZV_READ("@NLTIMAP", readNlTime, 4, 200, 10, 3, 0),
    ZV_READ("@NLTIME", readNlTime, 10, 200, 20, 3, 0),
    ZV_READ("@NLSTRMON", readNlStrMon, 1, 200, 12, 3, 0),
    ZV_READ("@WEEKU", readWeekU, 3, 200, 11, 3, 0),
    ZV_READ("@WEEKV", readWeekV, 3, 200, 11, 3, 0),
    ZV_READ("@WEEKW", readWeekW, 3, 200, 11, 3, 0),

    // ---- formats -------------------------------------------------------------
    ZV_NUMBER("NLBEST", writeNlBest, 1, 32, 12, 31, 0, 0),
    ZV_NUMBER("NLD", writeNlD, 1, 32, 12, 31, 0, 0),

    ZV_DATE("NLDATE", writeNlDate, 10, 200, 20, 0, 0, 8),
    ZV_DATE("NLDATEL", writeNlDateL, 2, 200, 18, 0, 0, 6),
    ZV_DATE("NLDATEM", writeNlDateM, 2, 200, 14, 0, 0, 1),
    ZV_DATE("NLDATEMD", writeNlDateMD, 4, 200, 16, 0, 0, 8),
    ZV_DATE("NLDATEMDL", writeNlDateMDL, 5, 200, 12, 0, 0, 4),
    ZV_DATE("NLDATEMDM", writeNlDateMDM, 5, 200, 9, 0, 0, 3),
    ZV_DATE("NLDATEMDS", writeNlDateMDS, 5, 200, 5, 0, 0, 0),
    ZV_DATE("NLDATEMN", writeNlDateMN, 4, 200, 9, 0, 0, 6),
    ZV_DATE("NLDATES", writeNlDateS, 2, 200, 10, 0, 0, 0),
    ZV_DATE("NLDATEW", writeNlDateW, 10, 200, 29, 0, 0, 18),
    ZV_DATE("NLDATEWN", writeNlDateWN, 4, 200, 9, 0, 0, 6),
    ZV_DATE("NLDATEYM", writeNlDateYM, 4, 200, 16, 0, 0, 6),
    ZV_DATE("NLDATEYML", writeNlDateYML, 5, 200, 14, 0, 0, 4),
    ZV_DATE("NLDATEYMM", writeNlDateYMM, 5, 200, 11, 0, 0, 4),
    ZV_DATE("NLDATEYMS", writeNlDateYMS, 5, 200, 7, 0, 0, 0),
    ZV_DATE("NLDATEYQ", writeNlDateYQ, 4, 200, 16, 0, 0, 6),
    ZV_DATE("NLDATEYQL", writeNlDateYQL, 4, 200, 18, 0, 0, 8),
    ZV_DATE("NLDATEYQM", writeNlDateYQM, 4, 200, 7, 0, 0, 0),
    ZV_DATE("NLDATEYQS", writeNlDateYQS, 4, 200, 6, 0, 0, 0),
    ZV_DATE("NLDATEYR", writeNlDateYR, 2, 200, 16, 0, 0, 2),
    ZV_DATE("NLDATEYW", writeNlDateYW, 5, 200, 16, 0, 0, 0),

    ZV_DATE("NLDATM", writeNlDatm, 10, 200, 30, 3, 0, 8),
    ZV_DATE("NLDATMAP", writeNlDatmAP, 16, 200, 32, 3, 0, 10),
    ZV_DATE("NLDATMDT", writeNlDatmDT, 10, 200, 18, 0, 0, 6),
    ZV_DATE("NLDATML", writeNlDatmL, 9, 200, 30, 3, 0, 6),
    ZV_DATE("NLDATMM", writeNlDatmM, 9, 200, 14, 3, 0, 1),
    ZV_DATE("NLDATMMD", writeNlDatmMD, 4, 200, 16, 0, 0, 8),
    ZV_DATE("NLDATMMDL", writeNlDatmMDL, 5, 200, 12, 0, 0, 4),
    ZV_DATE("NLDATMMDM", writeNlDatmMDM, 5, 200, 9, 0, 0, 3),
    ZV_DATE("NLDATMMDS", writeNlDatmMDS, 5, 200, 5, 0, 0, 0),
    ZV_DATE("NLDATMMN", writeNlDatmMN, 4, 200, 9, 0, 0, 6),
    ZV_DATE("NLDATMS", writeNlDatmS, 9, 200, 19, 3, 0, 0),
    ZV_DATE("NLDATMTM", writeNlDatmTM, 16, 200, 16, 3, 0, 6),
    ZV_DATE("NLDATMTZ", writeNlDatmTZ, 16, 200, 32, 3, 0, 6),
    ZV_DATE("NLDATMW", writeNlDatmW, 16, 200, 41, 3, 0, 22),
    ZV_DATE("NLDATMWN", writeNlDatmWN, 4, 200, 9, 0, 0, 6),
    ZV_DATE("NLDATMWZ", writeNlDatmWZ, 16, 200, 40, 3, 0, 22),
    ZV_DATE("NLDATMYM", writeNlDatmYM, 4, 200, 16, 0, 0, 6),
    ZV_DATE("NLDATMYML", writeNlDatmYML, 5, 200, 14, 0, 0, 4),
    ZV_DATE("NLDATMYMM", writeNlDatmYMM, 5, 200, 11, 0, 0, 4),
    ZV_DATE("NLDATMYMS", writeNlDatmYMS, 5, 200, 7, 0, 0, 0),
    ZV_DATE("NLDATMYQ", writeNlDatmYQ, 4, 200, 16, 0, 0, 6),
    ZV_DATE("NLDATMYQL", writeNlDatmYQL, 4, 200, 18, 0, 0, 8),
    ZV_DATE("NLDATMYQM", writeNlDatmYQM, 4, 200, 7, 0, 0, 0),
    ZV_DATE("NLDATMYQS", writeNlDatmYQS, 4, 200, 6, 0, 0, 0),
    ZV_DATE("NLDATMYR", writeNlDatmYR, 2, 200, 16, 0, 0, 2),
    ZV_DATE("NLDATMYW", writeNlDatmYW, 5, 200, 16, 0, 0, 0),
    ZV_DATE("NLDATMZ", writeNlDatmZ, 16, 200, 40, 3, 0, 12),

    ZV_FORMAT_CURRENCIES(ZV_WRITE_MNI)
    ZV_FORMAT_CURRENCIES(ZV_WRITE_MNL)

    ZV_NUMBER("NLMNY", writeNlMny, 1, 32, 9, 31, 0, 2),
    ZV_NUMBER("NLMNYI", writeNlMnyI, 1, 32, 9, 31, 0, 0),
    ZV_NUMBER("NLNUM", writeNlNum, 1, 32, 6, 31, 0, 0),
    ZV_NUMBER("NLNUMI", writeNlNumI, 1, 32, 6, 31, 0, 0),
    ZV_NUMBER("NLPCT", writeNlPct, 4, 32, 6, 31, 0, 0),
    ZV_NUMBER("NLPCTI", writeNlPctI, 4, 32, 6, 31, 0, 0),
    ZV_NUMBER("NLPCTN", writeNlPctN, 4, 32, 6, 31, 0, 0),
    ZV_NUMBER("NLPCTP", writeNlPctP, 4, 32, 6, 31, 0, 0),

    ZV_NUMBER("NLSTRMON", writeNlStrMon, 1, 200, 20, 3, 0, 1),
    ZV_NUMBER("NLSTRQTR", writeNlStrQtr, 1, 200, 20, 3, 0, 1),
    ZV_NUMBER("NLSTRWK", writeNlStrWk, 1, 200, 20, 3, 0, 1),

    ZV_DATE("NLTIMAP", writeNlTimAP, 4, 200, 10, 3, 0, 0),
    ZV_DATE("NLTIME", writeNlTime, 10, 200, 20, 3, 0, 6),

    ZV_DATE("WEEKU", writeWeekU, 2, 200, 11, 0, 0, 0),
    ZV_DATE("WEEKV", writeWeekV, 2, 200, 11, 0, 0, 0),
    ZV_DATE("DTWEEKV", writeDtWeekV, 3, 200, 18, 0, 0, 0),
    ZV_DATE("WEEKW", writeWeekW, 2, 200, 11, 0, 0, 0),
    ZV_DATE("YYWEEKU", writeYyWeekU, 2, 8, 7, 0, 0, 0),
    ZV_DATE("YYWEEKV", writeYyWeekV, 2, 8, 7, 0, 0, 0),
    ZV_DATE("YYWEEKW", writeYyWeekW, 2, 8, 7, 0, 0, 0),

    // The closing row: blank name, no entries.
    makeRow("", ZV_KIND_NUMBER, ZV_KIND_TEXT, nullptr, nullptr, Limits{2, 8, 7, 0, 0, 0}),
};

#undef ZV_DATE
#undef ZV_NUMBER
#undef ZV_READ
#undef ZV_READ_MNI
#undef ZV_READ_MNL
#undef ZV_WRITE_MNI
#undef ZV_WRITE_MNL

} // namespace

const FormatTableRow *formatTable() { return kTable; }

} // namespace zv
