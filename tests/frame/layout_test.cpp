// The records agree between C and C++ and the exports have C names.
#include <dlfcn.h>
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

// The shared library exports exactly the four C names a host looks up.
TEST(Layout, SharedLibraryExportsTheFourEntries) {
    void *lib = dlopen(ZV_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    for (const char *name : {"zvlocfmt", "zvextent", "zvextver", "zvvercn1"})
        EXPECT_NE(dlsym(lib, name), nullptr) << name;
    // Internal routines stay hidden.
    EXPECT_EQ(dlsym(lib, "_ZN2zv12findInstanceEPK10FormatCall"), nullptr);
    dlclose(lib);
}
