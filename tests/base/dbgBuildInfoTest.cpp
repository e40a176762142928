#include "base/dbgBuildInfo.h"

#include "base/dbgBuildText.h"
#include "support/vtableSlot.h"

#include <cstring>
#include <gtest/gtest.h>

namespace
{

using support::slotOf;
using Zu::DbgBuildInfo;
using Zu::DbgBuildText;
using Zu::DbgTextBuildInfo;

constexpr DbgBuildText TEXT = {"API", 7, 8, "label", "library"};

// Modules that were compiled earlier go by it.
TEST(DbgBuildInfo, TheOrderOfTheOperationsIsFixed)
{
    EXPECT_EQ(slotOf(&DbgBuildInfo::getApiName), 0);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getMajorVersion), 1);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getMinorVersion), 2);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getVersionLabel), 3);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getLibraryName), 4);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getBuildStamp), 5);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getBuildDate), 6);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getBuildConfiguration), 7);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getBuiltBy), 8);
    EXPECT_EQ(slotOf(&DbgBuildInfo::getBuildNotes), 9);
}

// The destructor comes after them.
TEST(DbgBuildInfo, TheDestructorIsTheLastOperation)
{
    static bool isEnded;
    class Ending : public DbgTextBuildInfo
    {
    public:
        Ending() : DbgTextBuildInfo(TEXT) {}
        ~Ending() override
        {
            isEnded = true;
        }
    };
    DbgBuildInfo* const record = new Ending;
    isEnded = false;
    void* const* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(record), sizeof table);
    // The one that also frees the object is the second of its two.
    reinterpret_cast<void (*)(DbgBuildInfo*)>(table[11])(record);
    EXPECT_TRUE(isEnded);
}

} // namespace
