#include "base/osFileHandle.h"

#include "base/exSysError.h"
#include "base/osFilePlatform.h"
#include "support/errorCode.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <cerrno>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace
{

namespace OsFileHandle = Zu::OsFileHandle;
namespace OsFilePlatform = Zu::OsFilePlatform;
using support::codeOf;
using support::onWindows;
using Zu::ExSysErrorANSI;
using Zu::ExSysErrorWindows;
using Zu::OsFileTypes;

constexpr std::int32_t LARGEST = std::numeric_limits<std::int32_t>::max();

class OsFileHandleTest : public testing::Test
{
protected:
    OsFileHandleTest()
    {
        support::writeFile(_dir.file("f"), "0123456789");
        _handle = OsFilePlatform::openExisting(_dir.file("f").c_str(), OsFileTypes::AccessRead);
    }

    ~OsFileHandleTest() override
    {
        if (_handle != OsFilePlatform::NONE) OsFilePlatform::close(_handle);
    }

private:
    support::TempDir _dir;

protected:
    std::int64_t _handle;
};

TEST(OsFileHandle, AClosedHandleRaisesThatItIsBad)
{
    std::int64_t closed = -1;
    const auto check = [](auto act)
    {
        errno = 0;
        try
        {
            act();
            FAIL() << "nothing raised";
        }
        catch (const ExSysErrorANSI& ex)
        {
            EXPECT_EQ(ex.getError(), EBADF);
        }
    };
    check([&] { OsFileHandle::check(closed); });
    check([&] { OsFileHandle::seek(closed, 0, OsFileTypes::SeekBegin); });
    check([&] { OsFileHandle::seek32(closed, 0, OsFileTypes::SeekBegin); });
    check([&] { OsFileHandle::close(closed); });
    EXPECT_EQ(closed, -1);
}

TEST(OsFileHandle, AnyOtherHandlePassesTheCheck)
{
    for (const std::int64_t handle : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-2}})
        EXPECT_NO_THROW(OsFileHandle::check(handle));
}

TEST_F(OsFileHandleTest, SeekingTellsTheNewPositionIn64Bits)
{
    const std::int64_t far = std::int64_t{1} << 40;
    EXPECT_EQ(OsFileHandle::seek(_handle, far, OsFileTypes::SeekBegin), far);
    EXPECT_EQ(OsFileHandle::seek(_handle, -1, OsFileTypes::SeekCurrent), far - 1);
    EXPECT_EQ(OsFileHandle::seek(_handle, far, OsFileTypes::SeekEnd), far + 10);
    EXPECT_EQ(OsFileHandle::seek(_handle, -10, OsFileTypes::SeekEnd), 0);
    EXPECT_EQ(codeOf([&] { OsFileHandle::seek(_handle, -1, OsFileTypes::SeekCurrent); }),
              onWindows ? 131 : 22);
}

TEST_F(OsFileHandleTest, APositionOf32BitsStaysWhereTheNewOneDoesNotFit)
{
    OsFileHandle::seek(_handle, 7, OsFileTypes::SeekBegin);
    EXPECT_EQ(OsFileHandle::seek32(_handle, LARGEST - 7, OsFileTypes::SeekCurrent), LARGEST);
    EXPECT_EQ(OsFileHandle::seek32(_handle, 7, OsFileTypes::SeekBegin), 7);
    EXPECT_THROW(OsFileHandle::seek32(_handle, LARGEST - 6, OsFileTypes::SeekCurrent),
                 ExSysErrorWindows);
    EXPECT_THROW(OsFileHandle::seek32(_handle, LARGEST - 9, OsFileTypes::SeekEnd),
                 ExSysErrorWindows);
    EXPECT_EQ(codeOf([&] { OsFileHandle::seek32(_handle, LARGEST - 6, OsFileTypes::SeekCurrent); }),
              onWindows ? 223 : 27);
    EXPECT_EQ(OsFileHandle::seek(_handle, 0, OsFileTypes::SeekCurrent), 7);
    // A position that is not reported is kept, too.
    const std::int64_t far = std::int64_t{1} << 40;
    OsFileHandle::seek(_handle, far, OsFileTypes::SeekBegin);
    EXPECT_THROW(OsFileHandle::seek32(_handle, 0, OsFileTypes::SeekCurrent), ExSysErrorWindows);
    EXPECT_EQ(OsFileHandle::seek(_handle, 0, OsFileTypes::SeekCurrent), far);
}

TEST_F(OsFileHandleTest, ClosingForgetsTheHandle)
{
    OsFileHandle::close(_handle);
    EXPECT_EQ(_handle, -1);
    EXPECT_THROW(OsFileHandle::close(_handle), ExSysErrorANSI);
}

TEST(OsFileHandle, AHandleThatTheSystemDoesNotKnowIsKept)
{
    // No process has as many descriptors, and no handle of Windows is odd.
    constexpr std::int64_t UNKNOWN = 0x7ffffff1;
    std::int64_t handle = UNKNOWN;
    EXPECT_EQ(codeOf([&] { OsFileHandle::close(handle); }), onWindows ? 6 : 9);
    EXPECT_EQ(handle, UNKNOWN);
    EXPECT_EQ(codeOf([&] { OsFileHandle::seek(handle, 0, OsFileTypes::SeekEnd); }),
              onWindows ? 6 : 9);
}

} // namespace
