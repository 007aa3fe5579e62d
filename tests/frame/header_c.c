/* The public header compiles as C, and its layout agrees in C. */
#include <stddef.h>

#include "zvlocfmt/zvlocfmt.h"

_Static_assert(sizeof(FormatCall) == 304, "FormatCall in C");
_Static_assert(sizeof(FormatTableRow) == 128, "FormatTableRow in C");
_Static_assert(offsetof(ExtensionInstance, itemSnapshot) == 112, "instance head in C");

size_t zvtestCSizeOfFormatCall(void) { return sizeof(FormatCall); }
size_t zvtestCSizeOfRow(void) { return sizeof(FormatTableRow); }
size_t zvtestCOffsetOfSnapshot(void) { return offsetof(ExtensionInstance, itemSnapshot); }
size_t zvtestCOffsetOfWideFromLocaleText(void) { return offsetof(ExtensionInstance, wideFromLocaleText); }
size_t zvtestCSizeOfBlock(void) { return sizeof(LocaleBlock); }

/* A C host can name every export. */
typedef ExtensionInstance *(*BuildFn)(HostAnchor *, HostJournal *);
BuildFn zvtestCBuildEntry(void) { return zvlocfmt; }
