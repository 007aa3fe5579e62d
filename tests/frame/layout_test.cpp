// The records agree between C and C++ and the build entry is the C name.
#include <gtest/gtest.h>

#include "zvlocfmt/zvlocfmt.h"

extern "C" {
size_t zvtestCSizeOfFormatCall(void);
size_t zvtestCSizeOfRow(void);
size_t zvtestCOffsetOfSnapshot(void);
size_t zvtestCOffsetOfWideFromLocaleText(void);
size_t zvtestCSizeOfBlock(void);
typedef ExtensionInstance *(*BuildFn)(HostAnchor *, HostJournal *);
BuildFn zvtestCBuildEntry(void);
}

TEST(Layout, CAndCppAgree) {
    EXPECT_EQ(zvtestCSizeOfFormatCall(), sizeof(FormatCall));
    EXPECT_EQ(zvtestCSizeOfRow(), sizeof(FormatTableRow));
    EXPECT_EQ(zvtestCOffsetOfSnapshot(), offsetof(ExtensionInstance, itemSnapshot));
    EXPECT_EQ(zvtestCOffsetOfWideFromLocaleText(), offsetof(ExtensionInstance, wideFromLocaleText));
    EXPECT_EQ(zvtestCSizeOfBlock(), sizeof(LocaleBlock));
    EXPECT_EQ(zvtestCOffsetOfWideFromLocaleText() - zvtestCOffsetOfSnapshot(), 189 * sizeof(LocaleItem));
    EXPECT_EQ(zvtestCBuildEntry(), &zvlocfmt);
}
