// The date pattern table: the fixed, locale-free forms that the date
// readers fall back on, and the rows that guessing walks. The rows of one
// name stand together and are tried in this order.
#include "dateread/dateread.hpp"

namespace zv {

namespace {
constexpr const ZvChar *kDte = u"DTE";
constexpr const ZvChar *kTme = u"TME";
constexpr const ZvChar *kDtm = u"DTM";
constexpr const ZvChar *kAny = u"ANYDATE";
} // namespace

const DatePatternRow datePatternTable[kDatePatternRowCount] = {
    // name, minWidth, maxWidth, defaultWidth, minLength, maxLength, kind, pattern
    {kAny, 0, 0, 0, 6, 8, kDte, u"%P%m%d%y"},                            //   0
    {kAny, 0, 0, 0, 6, 8, kDte, u"%P%d%m%y"},                            //   1
    {kAny, 0, 0, 0, 6, 8, kDte, u"%P%y%m%d"},                            //   2
    {kAny, 0, 0, 0, 5, 32, kDte, u"%P%y%j"},                             //   3
    {kAny, 0, 0, 0, 3, 32, kDte, u"%P%y%q"},                             //   4
    {kAny, 0, 0, 0, 4, 32, kDte, u"%P%yQ%q"},                            //   5
    {kAny, 0, 0, 0, 2, 3, kTme, u"%P%i"},                                //   6
    {kAny, 0, 0, 0, 4, 6, kTme, u"%P%i%c%M"},                            //   7
    {kAny, 0, 0, 0, 4, 32, kDte, u"%P%m%y"},                             //   8
    {kAny, 0, 0, 0, 4, 32, kDte, u"%P%y%c%q"},                           //   9
    {kAny, 0, 0, 0, 4, 32, kDte, u"%P%y%m"},                             //  10
    {kAny, 0, 0, 0, 5, 6, kTme, u"%P%i%c%p"},                            //  11
    {kAny, 0, 0, 0, 5, 32, kDte, u"%P%m%c%y"},                           //  12
    {kAny, 0, 0, 0, 5, 32, kDte, u"%P%mM%y"},                            //  13
    {kAny, 0, 0, 0, 5, 7, kDte, u"%P%ub%y"},                             //  14
    {kAny, 0, 0, 0, 5, 32, kDte, u"%P%y%c%m"},                           //  15
    {kAny, 0, 0, 0, 5, 32, kDte, u"%P%y%r"},                             //  16
    {kAny, 0, 0, 0, 5, 32, kDte, u"%P%y%ub"},                            //  17
    {kAny, 0, 0, 0, 5, 32, kDte, u"%P%yM%m"},                            //  18
    {kAny, 0, 0, 0, 6, 32, kDte, u"%P%y%c%r"},                           //  19
    {kAny, 0, 0, 0, 6, 32, kDte, u"%P%yQ%r"},                            //  20
    {kAny, 0, 0, 0, 6, 10, kDte, u"%P%d%ub%y"},                          //  21
    {kAny, 0, 0, 0, 6, 12, kTme, u"%P%i%c%M%%p"},                        //  22
    {kAny, 0, 0, 0, 6, 13, kTme, u"%P%i%c%M%c%p"},                       //  23
    {kAny, 0, 0, 0, 6, 20, kTme, u"%P%i%c%M%c%S%p"},                     //  24
    {kAny, 0, 0, 0, 6, 20, kTme, u"%P%i%c%M%c%S%c%p"},                   //  25
    {kAny, 0, 0, 0, 6, 20, kTme, u"%P%i%c%M%c%S"},                       //  26
    {kAny, 0, 0, 0, 8, 11, kDte, u"%P%d-%ub-%y"},                        //  27
    {kAny, 0, 0, 0, 8, 11, kDte, u"%P%d/%ub/%y"},                        //  28
    {kAny, 0, 0, 0, 8, 10, kDte, u"%P%m%c%d%c%y"},                       //  29
    {kAny, 0, 0, 0, 8, 10, kDte, u"%P%d%c%m%c%y"},                       //  30
    {kAny, 0, 0, 0, 8, 10, kDte, u"%P%y%c%m%c%d"},                       //  31
    {kAny, 0, 0, 0, 8, 15, kTme, u"%P%i:%M:%S"},                         //  32
    {kAny, 0, 0, 0, 9, 13, kTme, u"%P%i:%M:%SZ"},                        //  33
    {kAny, 0, 0, 0, 10, 23, kDtm, u"%P%b%c%d%c%y%c%H%c%M%c%S%c%p"},      //  34
    {kAny, 0, 0, 0, 10, 12, kDtm, u"%P%d%ub%y%c%H"},                     //  35
    {kAny, 0, 0, 0, 10, 14, kDtm, u"%P%d-%ub-%y%c%H"},                   //  36
    {kAny, 0, 0, 0, 10, 14, kDtm, u"%P%d/%ub/%y%c%H"},                   //  37
    {kAny, 0, 0, 0, 10, 10, kDte, u"%P%y-%m-%d"},                        //  38
    {kAny, 0, 0, 0, 11, 11, kDte, u"%P%d/%ub/%y"},                       //  39
    {kAny, 0, 0, 0, 11, 11, kDte, u"%P%d-%ub-%y"},                       //  40
    {kAny, 0, 0, 0, 11, 17, kDte, u"%P%b%c%d,%c%y"},                     //  41
    {kAny, 0, 0, 0, 11, 32, kDte, u"%P%B%c%d,%c%y"},                     //  42
    {kAny, 0, 0, 0, 12, 17, kDte, u"%P%d%c%b%c%y"},                      //  43
    {kAny, 0, 0, 0, 13, 15, kDtm, u"%P%d%ub%y%c%H%c%M"},                 //  44
    {kAny, 0, 0, 0, 13, 15, kDtm, u"%P%d%ub%y%c%i%c%p"},                 //  45
    {kAny, 0, 0, 0, 13, 17, kDtm, u"%P%d-%ub-%y%c%H%c%M"},               //  46
    {kAny, 0, 0, 0, 13, 15, kDtm, u"%P%d/%ub/%y%c%i%c%p"},               //  47
    {kAny, 0, 0, 0, 14, 20, kTme, u"%P%i:%M:%S+:"},                      //  48
    {kAny, 0, 0, 0, 14, 40, kDtm, u"%P%m%c%d%c%y%c%i%c%M"},              //  49
    {kAny, 0, 0, 0, 15, 22, kDte, u"%P%a,%c%b%c%d,%c%y"},                //  50
    {kAny, 0, 0, 0, 15, 22, kDtm, u"%P%a,%c%d%c%b%c%y"},                 //  51
    {kAny, 0, 0, 0, 15, 40, kDtm, u"%P%d%ub%y%c%H%c%M%c%S"},             //  52
    {kAny, 0, 0, 0, 15, 42, kDtm, u"%P%d-%ub-%y%c%H%c%M%c%S"},           //  53
    {kAny, 0, 0, 0, 15, 42, kDtm, u"%P%d/%ub/%y%c%H%c%M%c%S"},           //  54
    {kAny, 0, 0, 0, 15, 18, kDtm, u"%P%d%ub%y%c%i%c%M%c%p"},             //  55
    {kAny, 0, 0, 0, 15, 20, kDtm, u"%P%d-%ub-%y%c%i%c%M%c%p"},           //  56
    {kAny, 0, 0, 0, 15, 20, kDtm, u"%P%d/%ub/%y%c%i%c%M%c%p"},           //  57
    {kAny, 0, 0, 0, 17, 40, kDtm, u"%P%m%c%d%c%y%c%i%c%M%c%p"},          //  58
    {kAny, 0, 0, 0, 17, 40, kDtm, u"%P%m%c%d%c%y%c%i%c%M%c%S"},          //  59
    {kAny, 0, 0, 0, 17, 40, kDtm, u"%P%m%c%d%c%y%c%i%c%M%c%S%c%p"},      //  60
    {kAny, 0, 0, 0, 18, 32, kDte, u"%P%d%c%B%c%y"},                      //  61
    {kAny, 0, 0, 0, 19, 40, kDtm, u"%P%d%ub%y%c%i%c%M%c%S%c%p"},         //  62
    {kAny, 0, 0, 0, 19, 42, kDtm, u"%P%d-%ub-%y%c%i%c%M%c%S%c%p"},       //  63
    {kAny, 0, 0, 0, 19, 42, kDtm, u"%P%d/%ub/%y%c%i%c%M%c%S%c%p"},       //  64
    {kAny, 0, 0, 0, 19, 26, kDtm, u"%P%y-%m-%dT%H:%M:%S"},               //  65
    {kAny, 0, 0, 0, 20, 24, kDtm, u"%P%y-%m-%dT%H:%M:%SZ"},              //  66
    {kAny, 0, 0, 0, 20, 37, kDtm, u"%P%B%c%d,%c%y%c%H%c%M%c%S"},         //  67
    {kAny, 0, 0, 0, 23, 28, kDte, u"%P%A,%c%b%c%d,%c%y"},                //  68
    {kAny, 0, 0, 0, 23, 28, kDtm, u"%P%A,%c%d%c%b%c%y"},                 //  69
    {kAny, 0, 0, 0, 25, 35, kDtm, u"%P%y-%m-%dT%H:%M:%S%G%H:%M"},        //  70
    {kAny, 0, 0, 0, 26, 30, kDtm, u"%P%a%c%b%c%d%c%H%c%M%c%S%c%z%c%y"},  //  71
    {kAny, 0, 0, 0, 29, 37, kDte, u"%P%A,%c%B%c%d,%c%y"},                //  72
    {kAny, 0, 0, 0, 29, 37, kDte, u"%P%A,%c%d%c%B%c%y"},                 //  73

    {u"B8601DA", 8, 10, 10, 10, 10, kDte, u"%P%Y%m%d"},                   //  74
    {u"B8601DA", 10, 10, 10, 10, 10, kDte, u"%P%Y-%m-%d"},                //  75
    {u"B8601DJ", 15, 29, 19, 19, 29, kDtm, u"%P%Y-%m-%d%c%H:%M:%S"},      //  76
    {u"B8601DN", 8, 10, 10, 10, 10, kDtm, u"%P%Y%m%d"},                   //  77
    {u"B8601DN", 10, 10, 10, 10, 10, kDtm, u"%P%Y-%m-%d"},                //  78
    {u"B8601DT", 15, 26, 19, 19, 26, kDtm, u"%P%Y%m%dT%H%M%S"},           //  79
    {u"B8601DT", 19, 26, 19, 19, 26, kDtm, u"%P%Y-%m-%dT%H:%M:%S"},       //  80
    {u"B8601DZ", 16, 35, 26, 20, 24, kDtm, u"%P%Y%m%dT%H%M%SZ"},          //  81
    {u"B8601DZ", 20, 35, 26, 20, 24, kDtm, u"%P%Y-%m-%dT%H:%M:%SZ"},      //  82
    {u"B8601DZ", 20, 35, 26, 25, 35, kDtm, u"%P%Y%m%dT%H%M%S%G%H%M"},     //  83
    {u"B8601DZ", 20, 35, 26, 25, 35, kDtm, u"%P%Y-%m-%dT%H:%M:%S%G%H:%M"},//  84
    {u"B8601LZ", 9, 20, 14, 14, 20, kTme, u"%P%0i%M%S%G%H%M"},            //  85
    {u"B8601LZ", 9, 20, 14, 14, 20, kTme, u"%P%0i%M%S%G%H%M"},            //  86
    {u"B8601LZ", 9, 20, 14, 14, 20, kTme, u"%P%0i:%M:%S%G%H:%M"},         //  87
    {u"B8601LZ", 9, 20, 14, 14, 20, kTme, u"%P%0i:%M:%S%G%H:%M"},         //  88
    {u"B8601TM", 6, 15, 8, 8, 15, kTme, u"%P%0i%M%S"},                    //  89
    {u"B8601TM", 8, 15, 8, 8, 15, kTme, u"%P%0i:%M:%S"},                  //  90
    {u"B8601TZ", 7, 20, 14, 9, 13, kTme, u"%P%0i%M%SZ"},                  //  91
    {u"B8601TZ", 9, 20, 14, 9, 13, kTme, u"%P%0i:%M:%SZ"},                //  92
    {u"B8601TZ", 9, 20, 14, 14, 20, kTme, u"%P%0i%M%S%G%H%M"},            //  93
    {u"B8601TZ", 9, 20, 14, 14, 20, kTme, u"%P%0i:%M:%S%G%H:%M"},         //  94
    {u"E8601DA", 10, 10, 10, 10, 10, kDte, u"%P%Y-%m-%d"},                //  95
    {u"E8601DN", 10, 10, 10, 10, 10, kDtm, u"%P%Y-%m-%d"},                //  96
    {u"E8601DT", 19, 26, 19, 19, 26, kDtm, u"%P%Y-%m-%dT%H:%M:%S"},       //  97
    {u"E8601DZ", 20, 35, 26, 20, 24, kDtm, u"%P%Y-%m-%dT%H:%M:%SZ"},      //  98
    {u"E8601DZ", 20, 35, 26, 25, 35, kDtm, u"%P%Y-%m-%dT%H:%M:%S%G%H:%M"},//  99
    {u"E8601LZ", 9, 20, 14, 14, 20, kTme, u"%P%0i:%M:%S%G%H:%M"},         // 100
    {u"E8601TM", 8, 15, 8, 8, 15, kTme, u"%P%0i:%M:%S"},                  // 101
    {u"E8601TZ", 9, 20, 14, 9, 13, kTme, u"%P%0i:%M:%SZ"},                // 102
    {u"E8601TZ", 9, 20, 14, 14, 20, kTme, u"%P%0i:%M:%S%G%H:%M"},         // 103
    {u"DATE", 7, 32, 7, 7, 10, kDte, u"%P%d%ub%y"},                       // 104
    {u"DATE", 7, 32, 7, 11, 11, kDte, u"%P%d%C%ub%C%y"},                  // 105
    {u"DATETIME", 13, 40, 18, 7, 9, kDtm, u"%P%d%ub%y"},                  // 106
    {u"DATETIME", 13, 40, 18, 10, 12, kDtm, u"%P%d%ub%y:%H"},             // 107
    {u"DATETIME", 13, 40, 18, 13, 15, kDtm, u"%P%d%ub%y:%H:%M"},          // 108
    {u"DATETIME", 13, 40, 18, 16, 40, kDtm, u"%P%d%ub%y:%H:%M:%S"},       // 109
    {u"DDMMYY", 6, 32, 6, 6, 8, kDte, u"%P%0d%0m%y"},                     // 110
    {u"DDMMYY", 6, 32, 6, 8, 8, kDte, u"%P%0d%0m%Y"},                     // 111
    {u"DDMMYY", 6, 32, 6, 8, 10, kDte, u"%P%d%c%m%c%y"},                  // 112
    {u"HHMMSS", 1, 20, 8, 1, 2, kTme, u"%H"},                             // 113
    {u"HHMMSS", 1, 20, 8, 4, 4, kTme, u"%0H%0M"},                         // 114
    {u"HHMMSS", 1, 20, 8, 6, 6, kTme, u"%0H%0M%0S"},                      // 115
    {u"HHMMSS", 1, 20, 8, 7, 32, kTme, u"%H:%M:%S"},                      // 116
    {u"IS8601DA", 10, 10, 10, 10, 10, kDte, u"%P%Y-%m-%d"},               // 117
    {u"IS8601DN", 10, 10, 10, 10, 10, kDtm, u"%P%Y-%m-%d"},               // 118
    {u"IS8601DT", 19, 26, 19, 19, 26, kDtm, u"%P%Y-%m-%dT%H:%M:%S"},      // 119
    {u"IS8601DZ", 20, 35, 26, 20, 24, kDtm, u"%P%Y-%m-%dT%H:%M:%SZ"},     // 120
    {u"IS8601DZ", 20, 35, 26, 25, 35, kDtm, u"%P%Y-%m-%dT%H:%M:%S%G%H:%M"}, // 121
    {u"IS8601TM", 8, 15, 8, 8, 15, kTme, u"%P%0i:%M:%S"},                 // 122
    {u"IS8601TZ", 9, 20, 14, 9, 13, kTme, u"%P%0i:%M:%SZ"},               // 123
    {u"IS8601TZ", 9, 20, 14, 14, 20, kTme, u"%P%0i:%M:%S+00:00"},         // 124
    {u"JULIAN", 5, 32, 5, 5, 6, kDte, u"%P%y%j"},                         // 125
    {u"JULIAN", 5, 32, 5, 7, 7, kDte, u"%P%Y%j"},                         // 126
    {u"MDYAMPM", 8, 40, 19, 17, 40, kDtm, u"%P%m/%d/%y %i:%M %p"},        // 127
    {u"MDYAMPM", 8, 40, 19, 17, 40, kDtm, u"%P%m/%d/%y %i:%M:%S %p"},     // 128
    {u"MMDDYY", 6, 32, 6, 6, 8, kDte, u"%P%0m%0d%y"},                     // 129
    {u"MMDDYY", 6, 32, 6, 8, 8, kDte, u"%P%0m%0d%Y"},                     // 130
    {u"MMDDYY", 6, 32, 6, 8, 10, kDte, u"%P%m%c%d%c%y"},                  // 131
    {u"MONYY", 5, 32, 5, 5, 7, kDte, u"%P%ub%y"},                         // 132
    {u"TIME", 5, 32, 8, 2, 3, kTme, u"%P%i"},                             // 133
    {u"TIME", 5, 32, 8, 4, 6, kTme, u"%P%i:%M"},                          // 134
    {u"TIME", 5, 32, 8, 7, 20, kTme, u"%P%i:%M:%S"},                      // 135
    {u"XYYMMDD", 6, 20, 8, 6, 7, kDte, u"%P%0y%0m%0d"},                   // 136
    {u"XYYMMDD", 6, 20, 8, 8, 9, kDte, u"%P%0y-%m-%d"},                   // 137
    {u"XYYMMDD", 6, 20, 8, 10, 12, kDte, u"%P%Y-%m-%d"},                  // 138
    {u"YYMMDD", 6, 32, 6, 4, 4, kDte, u"%P%0y%m"},                        // 139
    {u"YYMMDD", 6, 32, 6, 5, 5, kDte, u"%P%y-%m"},                        // 140
    {u"YYMMDD", 6, 32, 6, 6, 6, kDte, u"%P%0y%0m%0d"},                    // 141
    {u"YYMMDD", 6, 32, 6, 8, 8, kDte, u"%P%Y%0m%0d"},                     // 142
    {u"YYMMDD", 6, 32, 6, 8, 10, kDte, u"%P%y%c%m%c%d"},                  // 143
    {u"YYMMN", 4, 6, 4, 4, 5, kDte, u"%P%0y%0m"},                         // 144
    {u"YYMMN", 4, 6, 4, 6, 6, kDte, u"%P%Y%0m"},                          // 145
    {u"YYQ", 4, 32, 4, 4, 32, kDte, u"%P%yQ%q"},                          // 146
    {u"DUMMY", 0, 0, 0, 1, 1, kDte, u"%P"},                               // 147
};

} // namespace zv
