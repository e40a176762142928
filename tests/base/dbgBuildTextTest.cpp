#include "base/dbgBuildText.h"

#include "base/objPtr.h"
#include "base/osFilePath.h"
#include "base/osSharedLib.h"
#include "support/childProcess.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>

namespace
{

using Zu::DbgBuildInfo;
using Zu::DbgBuildText;
using Zu::DbgTextBuildInfo;

static_assert(std::is_abstract_v<DbgBuildInfo>);
static_assert(std::has_virtual_destructor_v<DbgBuildInfo>);
static_assert(std::is_base_of_v<DbgBuildInfo, DbgTextBuildInfo>);
static_assert(!std::is_convertible_v<const DbgBuildText&, DbgTextBuildInfo>);

constexpr DbgBuildText FULL = {"Sample",
                               1,
                               4,
                               "beta",
                               "libZUsample",
                               "Sample_12",
                               "S. 12",
                               "May  8 2012",
                               "Release",
                               "HOST\\user",
                               "nothing known"};

constexpr DbgBuildText SHORT = {"Sample", -1, 0, "", "libZUsample"};

TEST(DbgTextBuildInfo, GivesItsTextsAndNumbers)
{
    const DbgTextBuildInfo record(FULL);
    const DbgBuildInfo& info = record;
    EXPECT_STREQ(info.getApiName(), "Sample");
    EXPECT_EQ(info.getMajorVersion(), 1);
    EXPECT_EQ(info.getMinorVersion(), 4);
    EXPECT_STREQ(info.getVersionLabel(), "beta");
    for (const bool verbose : {false, true})
    {
        EXPECT_STREQ(info.getLibraryName(verbose), "libZUsample") << verbose;
        EXPECT_STREQ(info.getBuildDate(verbose), "May  8 2012") << verbose;
        EXPECT_STREQ(info.getBuildConfiguration(verbose), "Release") << verbose;
        EXPECT_STREQ(info.getBuiltBy(verbose), "HOST\\user") << verbose;
        EXPECT_STREQ(info.getBuildNotes(verbose), "nothing known") << verbose;
    }
}

TEST(DbgTextBuildInfo, TheLongStampIsTheVerboseOne)
{
    const DbgTextBuildInfo info(FULL);
    EXPECT_STREQ(info.getBuildStamp(true), "Sample_12");
    EXPECT_STREQ(info.getBuildStamp(false), "S. 12");
}

TEST(DbgTextBuildInfo, ATextThatIsNotGivenIsToldAsNotAvailable)
{
    const std::string unknown = "[Information not available]";
    const DbgTextBuildInfo info(SHORT);
    EXPECT_EQ(info.getMajorVersion(), -1);
    EXPECT_EQ(info.getMinorVersion(), 0);
    EXPECT_STREQ(info.getVersionLabel(), "");
    for (const bool verbose : {false, true})
    {
        EXPECT_STREQ(info.getLibraryName(verbose), "libZUsample") << verbose;
        EXPECT_EQ(info.getBuildStamp(verbose), unknown) << verbose;
        EXPECT_EQ(info.getBuildDate(verbose), unknown) << verbose;
        EXPECT_EQ(info.getBuildConfiguration(verbose), unknown) << verbose;
        EXPECT_EQ(info.getBuiltBy(verbose), unknown) << verbose;
        EXPECT_EQ(info.getBuildNotes(verbose), unknown) << verbose;
    }
}

// The record keeps pointers: the constants may be of any place that lives as long.
TEST(DbgTextBuildInfo, KeepsTheConstantsAsPointers)
{
    const std::string api = "Sample";
    DbgBuildText text = SHORT;
    text._apiName = api.c_str();
    const DbgTextBuildInfo info(text);
    text._apiName = "Other";
    EXPECT_EQ(info.getApiName(), api.c_str());
}

using GetBuildInfo = DbgBuildInfo* (*)();

struct ModuleRow
{
    const char* _module;
    const char* _library;
    int _minor;
    const char* _stamp;
};

TEST(DbgTextBuildInfo, AModuleExportsAFunctionThatMakesItsRecord)
{
    const ModuleRow modules[] = {
        {"ZUbuildInfoSame", "libZUbuildInfoSame", 2, "P. 187"},
        {"ZUbuildInfoOtherVersion", "libZUbuildInfoOtherVersion", 3, "P. 187"},
        {"ZUbuildInfoOtherStamp", "libZUbuildInfoOtherStamp", 2, "P. 188"},
    };
    for (const ModuleRow& row : modules)
    {
        SCOPED_TRACE(row._module);
        const Zu::OsFilePath path(support::modulePath(row._module).c_str());
        const Zu::ObjPtr<Zu::OsSharedLib> library(Zu::OsSharedLib::open(path));
        const auto make = reinterpret_cast<GetBuildInfo>(library->getFunction("getBuildInfo"));
        const std::unique_ptr<const DbgBuildInfo> first(make());
        const std::unique_ptr<const DbgBuildInfo> second(make());
        // Each call makes one that its caller owns.
        EXPECT_NE(first, second);
        for (const auto& info : {first.get(), second.get()})
        {
            EXPECT_STREQ(info->getApiName(), "Corvane");
            EXPECT_EQ(info->getMajorVersion(), 0);
            EXPECT_EQ(info->getMinorVersion(), row._minor);
            EXPECT_STREQ(info->getLibraryName(false), row._library);
            EXPECT_STREQ(info->getBuildStamp(false), row._stamp);
        }
    }
}

} // namespace
