// What the file classes do when system calls fail; Windows only, in a separate program.

#include "base/osFilePlatform.h"

#include "base/exSysError.h"
#include "base/osDirectory.h"
#include "base/osFile.h"
#include "base/osFileEx.h"
#include "base/osFileReader.h"
#include "base/osFileTools.h"
#include "base/osFileWriter.h"
#include "base/osUtils.h"
#include "support/errorCode.h"
#include "support/faults.h"
#include "support/faultTest.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <windows.h>

namespace
{

namespace Platform = Zu::OsFilePlatform;
using support::Call;
using support::codeOf;
using support::FalseDrive;
using support::Fault;
using support::noise;
using support::readFile;
using support::writeFile;
using Zu::ObjPtr;
using Zu::OsDirectory;
using Zu::OsFile;
using Zu::OsFileEx;
using Zu::OsFilePath;
using Zu::OsFileReader;
using Zu::OsFileTools;
using Zu::OsFileTypes;
using Zu::OsFileWriter;
using Zu::OsPassThroughFilter;

const OsFileTypes::Permissions usual;
const OsPassThroughFilter everything;

class OsFileFaultTest : public support::FaultTest
{
protected:
    // The system keeps open what the first use of local time and the first error text open.
    static void SetUpTestSuite()
    {
        OsFile(".").getLastAccessTime();
        EXPECT_EQ(codeOf([] { const OsFileReader missing("no such file"); }), ERROR_FILE_NOT_FOUND);
    }
};

using OsFileFaultDeathTest = OsFileFaultTest;

TEST_F(OsFileFaultTest, EveryQuestionPassesOnWhyItFailed)
{
    const OsFile plain(made("f", "content"));
    const std::map<Call, std::function<void()>> questions = {
        {Call::GET_FILE_SIZE, [&] { (void)plain.getSize(); }},
        {Call::GET_FILE_TIME, [&] { plain.getLastAccessTime(); }}};
    for (const auto& [call, ask] : questions)
    {
        {
            const Fault fault(call, ERROR_IO_DEVICE);
            EXPECT_EQ(codeOf(ask), ERROR_IO_DEVICE);
            EXPECT_EQ(fault.failures(), 1);
            // Closing the handle that was opened for the query does not hide the error.
            const Fault closing(Call::CLOSE_HANDLE, ERROR_INVALID_HANDLE, 1);
            EXPECT_EQ(codeOf(ask), ERROR_IO_DEVICE);
            EXPECT_EQ(closing.failures(), 1);
            support::closeUnclosed();
        }
        const Fault fault(Call::CREATE_FILE, ERROR_ACCESS_DENIED);
        EXPECT_EQ(codeOf(ask), ERROR_ACCESS_DENIED);
        EXPECT_EQ(fault.failures(), 1);
    }
    const Fault fault(Call::GET_FILE_TIME, ERROR_IO_DEVICE);
    EXPECT_EQ(codeOf([&] { plain.getLastModificationTime(); }), ERROR_IO_DEVICE);
}

TEST_F(OsFileFaultTest, WhatGoesWrongBetweenTwoLooksIsTheSystemsError)
{
    const OsFile plain(made("f", "content"));
    // The first call checks its existence.
    const Fault fault(Call::GET_FILE_ATTRIBUTES, ERROR_IO_DEVICE, Fault::ALWAYS, 1);
    EXPECT_EQ(codeOf([&] { (void)plain.getType(); }), ERROR_IO_DEVICE);
}

TEST_F(OsFileFaultTest, AFailedTransferRaisesAndTheObjectsStayOpen)
{
    OsFileReader reader(made("f", "content"));
    OsFileWriter writer(path("g"), usual, false);
    char bytes[8] = {};
    for (const int error : {ERROR_IO_DEVICE, ERROR_LOCK_VIOLATION, ERROR_CRC})
    {
        {
            const Fault reading(Call::READ_FILE, error);
            const Fault writing(Call::WRITE_FILE, error);
            EXPECT_EQ(codeOf([&] { reader.read(bytes, 7); }), error);
            EXPECT_EQ(codeOf([&] { writer.write("x", 1); }), error);
        }
        const Fault moving(Call::SET_FILE_POINTER, error);
        EXPECT_EQ(codeOf([&] { reader.seek(0, OsFileTypes::SeekBegin); }), error);
        EXPECT_EQ(codeOf([&] { writer.seek(0, OsFileTypes::SeekBegin); }), error);
        EXPECT_EQ(codeOf([&] { writer.reserve(10); }), error);
    }
    {
        const Fault sizing(Call::SET_END_OF_FILE, ERROR_DISK_FULL);
        EXPECT_EQ(codeOf([&] { writer.reserve(10); }), ERROR_DISK_FULL);
    }
    EXPECT_EQ(reader.read(bytes, 8), 7U);
    EXPECT_STREQ(bytes, "content");
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekBegin), 0);
    EXPECT_EQ(writer.write("x", 1), 1U);
}

TEST_F(OsFileFaultTest, TheEndOfTheFileIsAShortReadByEitherSign)
{
    OsFileReader reader(made("f", "content"));
    const Fault fault(Call::READ_FILE, ERROR_HANDLE_EOF);
    char byte;
    EXPECT_EQ(reader.read(&byte, 1), 0U);
    EXPECT_EQ(fault.failures(), 1);
}

TEST_F(OsFileFaultTest, AFullDiskIsAShortWriteByEitherSign)
{
    OsFileWriter writer(path("g"), usual, false);
    for (const int error : {ERROR_HANDLE_DISK_FULL, ERROR_DISK_FULL})
    {
        const Fault fault(Call::WRITE_FILE, error);
        EXPECT_EQ(writer.write("x", 1), 0U);
        EXPECT_EQ(fault.failures(), 1);
    }
}

TEST_F(OsFileFaultTest, AFileThatCanNotBeOpenedRaises)
{
    const OsFilePath existing = made("f", "content");
    for (const int error :
         {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_TOO_MANY_OPEN_FILES})
    {
        const Fault fault(Call::CREATE_FILE, error);
        EXPECT_EQ(codeOf([&] { OsFileReader reader(existing); }), error);
        EXPECT_EQ(codeOf([&] { OsFileWriter writer(existing, usual, false); }), error);
        EXPECT_EQ(codeOf([&] { OsFileWriter writer(path("g"), usual, true); }), error);
        EXPECT_EQ(OsFile(existing).getAccess(), 0);
    }
    EXPECT_EQ(readFile(file("f")), "content");
    EXPECT_FALSE(std::filesystem::exists(file("g")));
}

// A handle that could not be closed is as it was, and may be closed again.
TEST_F(OsFileFaultTest, AFailedCloseMayBeTriedAgain)
{
    expectCloseCanBeTriedAgain(Call::CLOSE_HANDLE, ERROR_IO_DEVICE);
}

TEST_F(OsFileFaultTest, DestructorsTellThatClosingFailed)
{
    const OsFilePath existing = made("f", "content");
    const std::function<void()> ends[] = {
        [&] { const OsFileReader reader(existing); },
        [&] { const OsFileWriter writer(path("g"), usual, false); },
        [&] { const ObjPtr<OsFileReader> reader(new OsFileReader(existing)); },
        [&] { const ObjPtr<OsFileWriter> writer(new OsFileWriter(path("g"), usual, false)); }};
    for (const std::function<void()>& end : ends)
    {
        const Fault fault(Call::CLOSE_HANDLE, ERROR_IO_DEVICE, 1);
        EXPECT_EQ(codeOf(end), ERROR_IO_DEVICE);
        support::closeUnclosed();
    }
}

TEST_F(OsFileFaultTest, DestructorsHideNoOtherException)
{
    struct Other
    {
    };
    const OsFilePath existing = made("f", "content");
    const Fault fault(Call::CLOSE_HANDLE, ERROR_IO_DEVICE, 1);
    EXPECT_THROW(
        {
            const OsFileReader reader(existing);
            throw Other();
        },
        Other);
    EXPECT_EQ(fault.failures(), 1);
    support::closeUnclosed();
}

TEST_F(OsFileFaultTest, ACopyThatFailsHalfWayLeavesTheSource)
{
    const std::string content = noise(200000);
    OsFile plain(made("f", content));
    const OsFilePath target = path("g");
    const std::map<int, int> codes = {{ERROR_DISK_FULL, ERROR_DISK_FULL},
                                      {ERROR_HANDLE_DISK_FULL, ERROR_DISK_FULL},
                                      {ERROR_IO_DEVICE, ERROR_IO_DEVICE}};
    for (const auto& [error, code] : codes)
    {
        const Fault fault(Call::WRITE_FILE, error, Fault::ALWAYS, 2);
        EXPECT_EQ(codeOf([&] { plain.copyTo(target); }), code);
        EXPECT_TRUE(readFile(file("g")) == content.substr(0, 131072));
    }
    {
        const Fault fault(Call::READ_FILE, ERROR_CRC, Fault::ALWAYS, 1);
        EXPECT_EQ(codeOf([&] { plain.copyTo(target); }), ERROR_CRC);
        EXPECT_TRUE(readFile(file("g")) == content.substr(0, 65536));
    }
    EXPECT_TRUE(readFile(file("f")) == content);
}

TEST_F(OsFileFaultTest, AListingThatFailsRaises)
{
    std::filesystem::create_directory(file("d"));
    for (const char* const name : {"d/a", "d/b", "d/c"}) made(name, "");
    const OsDirectory directory(path("d"));
    {
        const Fault fault(Call::FIND_FIRST_FILE, ERROR_ACCESS_DENIED);
        EXPECT_EQ(codeOf([&] { directory.getChildrenPath(OsFileTypes::PathFull, everything); }),
                  ERROR_ACCESS_DENIED);
        EXPECT_EQ(codeOf([&] { (void)directory.hasChildren(everything); }), ERROR_ACCESS_DENIED);
    }
    for (int after = 0; after < 5; ++after)
    {
        const Fault fault(Call::FIND_NEXT_FILE, ERROR_IO_DEVICE, 1, after);
        EXPECT_EQ(codeOf([&] { directory.getChildrenPath(OsFileTypes::PathFull, everything); }),
                  ERROR_IO_DEVICE)
            << after;
    }
    // No more files is the end, not a failure.
    const Fault fault(Call::FIND_FIRST_FILE, ERROR_NO_MORE_FILES);
    EXPECT_FALSE(directory.hasChildren(everything));
}

TEST_F(OsFileFaultTest, WhatCanNotBeAskedIsNotTheSameFile)
{
    const std::string existing = made("f", "content").getChars();
    const char* const name = existing.c_str();
    {
        const Fault fault(Call::GET_FILE_INFORMATION, ERROR_IO_DEVICE, 1);
        EXPECT_FALSE(Platform::isSame(name, name));
    }
    {
        const Fault fault(Call::GET_FILE_INFORMATION, ERROR_IO_DEVICE, 1, 1);
        EXPECT_FALSE(Platform::isSame(name, name));
    }
    EXPECT_TRUE(Platform::isSame(name, name));
}

// Where a file system has no file numbers, names distinguish the files.
TEST_F(OsFileFaultTest, WithoutNumbersFilesAreKnownByTheirNames)
{
    const std::string one = made("f", "content").getChars();
    const std::string other = made("g", "content").getChars();
    std::filesystem::create_directory(file("d"));
    const support::NoFileNumbers without;
    EXPECT_TRUE(Platform::isSame(one.c_str(), one.c_str()));
    EXPECT_TRUE(Platform::isSame(one.c_str(), file("d/../F").c_str()));
    EXPECT_FALSE(Platform::isSame(one.c_str(), other.c_str()));
}

TEST_F(OsFileFaultTest, AReplacementThatFailsLeavesTheFileAndNothingBeside)
{
    const OsFilePath target = made("f", "old");
    for (const Call call :
         {Call::CREATE_FILE, Call::WRITE_FILE, Call::FLUSH_FILE_BUFFERS, Call::MOVE_FILE})
    {
        const Fault fault(call, ERROR_IO_DEVICE);
        EXPECT_EQ(codeOf([&] { OsFileTools::replaceAll(target, "new"); }), ERROR_IO_DEVICE);
        EXPECT_EQ(fault.failures(), 1);
        EXPECT_EQ(readFile(file("f")), "old");
    }
    {
        // The close that fails and the one after it, of the same handle.
        const Fault fault(Call::CLOSE_HANDLE, ERROR_IO_DEVICE, 1);
        EXPECT_EQ(codeOf([&] { OsFileTools::replaceAll(target, "new"); }), ERROR_IO_DEVICE);
    }
    const Zu::ObjPtr<Zu::Vector<OsFilePath>> names =
        OsDirectory(path(".")).getChildrenPath(OsFileTypes::PathRelative, everything);
    ASSERT_EQ(names->size(), 1U);
    EXPECT_STREQ((*names)[0].getChars(), "f");
}

TEST_F(OsFileFaultTest, APlaceThatCanNotBeResolvedIsEmpty)
{
    const OsFilePath existing = made("f", "content");
    {
        const Fault fault(Call::GET_FINAL_PATH_NAME, ERROR_IO_DEVICE);
        EXPECT_EQ(Platform::resolved(existing.getChars()), "");
        EXPECT_EQ(fault.failures(), 1);
    }
    EXPECT_NE(Platform::resolved(existing.getChars()), "");
}

TEST_F(OsFileFaultTest, UnbufferedTransfersKeepToTheSectorsOfALocalDrive)
{
    const OsFile plain(made("f", "content"));
    {
        const FalseDrive local(DRIVE_FIXED, 4096);
        const ObjPtr<OsFileTypes::UnbufferedInfo> info = plain.getUnbufferedInfo();
        EXPECT_EQ(info->getAlignment(), 4096U);
        EXPECT_EQ(info->getBlockSize(), 4096U);
    }
    const FalseDrive remote(DRIVE_REMOTE, 512);
    EXPECT_THROW(plain.getUnbufferedInfo(), OsFileEx::ExNoRemoteUnbuffered);
}

TEST_F(OsFileFaultDeathTest, ADriveThatCanNotBeAskedIsFatal)
{
    const OsFile plain(made("f", "content"));
    const Fault fault(Call::GET_DISK_FREE_SPACE, ERROR_NOT_READY);
    EXPECT_DEATH(plain.getUnbufferedInfo(), "Assertion failed: isTold, file");
}

TEST_F(OsFileFaultDeathTest, APathWithoutADriveIsFatal)
{
    made("f", "content");
    const support::CurrentDirectoryGuard current(file("."));
    EXPECT_DEATH(OsFile("f").getUnbufferedInfo(), "Assertion failed: path.*':', file");
}

// The code of the C runtime that an act raises; 0 if it raises none.
template <class Act> int errnoOf(Act act)
{
    try
    {
        act();
    }
    catch (const Zu::ExSysErrorANSI& ex)
    {
        return ex.getError();
    }
    return 0;
}

TEST(OsUtilsFaultTest, AHostOrAUserWithoutANameRaises)
{
    struct Row
    {
        int _error;
        int _code;
    };
    for (const Row& row :
         {Row{ERROR_BUFFER_OVERFLOW, ENAMETOOLONG}, Row{ERROR_INSUFFICIENT_BUFFER, ENAMETOOLONG},
          Row{ERROR_ACCESS_DENIED, ENOENT}, Row{ERROR_NONE_MAPPED, ENOENT}})
    {
        const Fault host(Call::GET_HOST_NAME, row._error);
        const Fault user(Call::GET_USER_NAME, row._error);
        EXPECT_EQ(errnoOf([] { Zu::OsUtils::getHostName(); }), row._code);
        EXPECT_EQ(errnoOf([] { Zu::OsUtils::getUserName(false); }), row._code);
        EXPECT_EQ(errnoOf([] { Zu::OsUtils::getUserName(true); }), row._code);
        EXPECT_EQ(host.failures(), 1);
        EXPECT_EQ(user.failures(), 2);
    }
}

TEST_F(OsFileFaultTest, WhatAFailedWriteHasWrittenIsTold)
{
    OsFileWriter writer(path("g"), usual, false);
    for (const int error : {ERROR_IO_DEVICE, ERROR_HANDLE_DISK_FULL})
    {
        const Fault fault(Call::WRITE_FILE, error);
        std::uint64_t written = 4711;
        const int expected = error == ERROR_IO_DEVICE ? error : ERROR_DISK_FULL;
        EXPECT_EQ(codeOf([&] { OsFileTools::writeAll(writer, "text", written); }), expected);
        EXPECT_EQ(written, 0U);
    }
}

TEST_F(OsFileFaultTest, ACopyWhoseTimesCanNotBeKeptRaises)
{
    std::filesystem::create_directory(file("d"));
    made("d/f", "content");
    for (const char* const name : {"d/f", "d"})
        for (const Call call : {Call::GET_FILE_TIME, Call::SET_FILE_TIME})
        {
            const Fault fault(call, ERROR_IO_DEVICE, 1);
            EXPECT_EQ(codeOf([&] { OsFileTools::copyWithModesAndTimes(path(name), path("copy")); }),
                      ERROR_IO_DEVICE);
            EXPECT_EQ(fault.failures(), 1);
            std::filesystem::remove_all(file("copy"));
        }
}

} // namespace
