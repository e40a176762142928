// What the file classes do when system calls fail; Linux only, in a separate program.

#include "base/osFilePlatform.h"

#include "base/exSysError.h"
#include "base/lgInterProcessLock.h"
#include "base/osCpuInfo.h"
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
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <new>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{

namespace Platform = Zu::OsFilePlatform;
using support::Call;
using support::codeOf;
using support::FalseStatus;
using support::FalseVolume;
using support::Fault;
using support::noise;
using support::readFile;
using support::TransferLimit;
using support::writeFile;
using Zu::ArrayPtr;
using Zu::ExSysErrorANSI;
using Zu::ObjPtr;
using Zu::OsDateTypes;
using Zu::OsDirectory;
using Zu::OsFile;
using Zu::OsFileEx;
using Zu::OsFilePath;
using Zu::OsFileReader;
using Zu::OsFileTools;
using Zu::OsFileTypes;
using Zu::OsFileWriter;

const OsFileTypes::Permissions usual;

using OsFileFaultTest = support::FaultTest;

TEST_F(OsFileFaultTest, InterruptedOpeningIsResumed)
{
    const OsFilePath existing = made("f", "content");
    const Fault fault(Call::OPEN, EINTR, 3);
    OsFileReader reader(existing);
    EXPECT_EQ(fault.failures(), 3);
    char byte = '#';
    EXPECT_EQ(reader.read(&byte, 1), 1U);
    const Fault again(Call::OPEN, EINTR, 1);
    const OsFileWriter writer(path("g"), usual, true);
    EXPECT_EQ(again.failures(), 1);
}

TEST_F(OsFileFaultTest, AFailedOpeningRaisesItsCode)
{
    const OsFilePath existing = made("f", "content");
    const Fault fault(Call::OPEN, EMFILE);
    EXPECT_EQ(codeOf([&] { const OsFileReader reader(existing); }), EMFILE);
    EXPECT_EQ(codeOf([&] { const OsFileWriter writer(existing, usual, false); }), EMFILE);
    EXPECT_EQ(readFile(file("f")), "content");
}

// Memory that were only promised would end the process when it is touched.
TEST(LockFaultTest, WithoutMemoryForItALockIsAnError)
{
    const std::string name = "ZuFaults" + std::to_string(getpid());
    const std::string object = "/dev/shm/ZU-lock-" + std::to_string(geteuid()) + "-" + name;
    {
        const Fault fault(Call::FALLOCATE, ENOSPC);
        EXPECT_EQ(codeOf([&] { Zu::LgInterProcessLock::create(name.c_str()); }), ENOSPC);
        EXPECT_FALSE(std::filesystem::exists(object));
    }
    const Fault fault(Call::FALLOCATE, EINTR, 3);
    const std::unique_ptr<Zu::LgInterProcessLock> lock(
        Zu::LgInterProcessLock::create(name.c_str()));
    EXPECT_EQ(fault.failures(), 3);
    EXPECT_EQ(std::filesystem::file_size(object), sizeof(pthread_mutex_t));
    lock->lock();
    lock->unlock();
}

TEST_F(OsFileFaultTest, InterruptedReadingIsResumed)
{
    OsFileReader reader(made("f", "content"));
    const Fault fault(Call::READ, EINTR, 3);
    char buffer[8];
    EXPECT_EQ(reader.read(buffer, 8), 7U);
    EXPECT_EQ(std::string(buffer, 7), "content");
    EXPECT_EQ(fault.failures(), 3);
}

TEST_F(OsFileFaultTest, AFailedReadRaisesAndTheReaderGoesOn)
{
    OsFileReader reader(made("f", "content"));
    char buffer[8];
    {
        const Fault fault(Call::READ, EIO, 1);
        EXPECT_EQ(codeOf([&] { reader.read(buffer, 8); }), EIO);
    }
    EXPECT_EQ(reader.read(buffer, 8), 7U);
}

// No single system call returns more than 2 GiB; here the limit is even lower.
TEST_F(OsFileFaultTest, ReadingGoesOnBehindAPart)
{
    const std::string content = noise(1000);
    const OsFilePath existing = made("f", content);
    for (const std::size_t part : {1U, 7U, 999U})
    {
        OsFileReader reader(existing);
        const TransferLimit limit(part);
        const Fault fault(Call::READ, EINTR, 2, 1);
        std::string bytes(1200, '#');
        EXPECT_EQ(reader.read(bytes.data(), 300), 300U);
        EXPECT_EQ(reader.read(bytes.data() + 300, 900), 700U);
        EXPECT_EQ(reader.read(bytes.data(), 1), 0U);
        EXPECT_EQ(fault.failures(), 2);
        EXPECT_TRUE(bytes == content + std::string(200, '#'));
    }
}

TEST_F(OsFileFaultTest, AReadThatFailsBehindAPartGivesThatAndTheNextOneRaises)
{
    OsFileReader reader(made("f", "content"));
    const TransferLimit limit(3);
    char buffer[8];
    {
        const Fault fault(Call::READ, EIO, Fault::ALWAYS, 1);
        EXPECT_EQ(reader.read(buffer, 8), 3U);
        EXPECT_EQ(codeOf([&] { reader.read(buffer, 8); }), EIO);
    }
    EXPECT_EQ(reader.read(buffer + 3, 5), 4U);
    EXPECT_EQ(std::string(buffer, 7), "content");
}

TEST_F(OsFileFaultTest, OfAPipeAReadGivesWhatHasComeAndDoesNotWaitForMore)
{
    support::makeFifo(file("fifo"));
    // With both ends open here, neither waits.
    const Platform::Handle pipe = Platform::openExisting(file("fifo").c_str(), 3);
    std::uint32_t count = 0;
    ASSERT_TRUE(Platform::write(pipe, "abc", 3, count));
    OsFileReader reader(path("fifo"));
    char buffer[8];
    EXPECT_EQ(reader.read(buffer, 8), 3U);
    EXPECT_EQ(std::string(buffer, 3), "abc");
    EXPECT_EQ(Platform::close(pipe), Platform::Closed::Done);
}

TEST_F(OsFileFaultTest, WhatAFailedWriteHasWrittenIsTold)
{
    const std::string content = noise(100);
    for (const int error : {EIO, EFBIG, ENOSPC, EDQUOT})
        for (const unsigned int parts : {0U, 1U, 3U})
        {
            OsFileWriter writer(path("f"), usual, false);
            const TransferLimit limit(10);
            const Fault fault(Call::WRITE, error, Fault::ALWAYS, static_cast<int>(parts));
            std::uint64_t written = 4711;
            const bool isFull = error == ENOSPC || error == EDQUOT;
            EXPECT_EQ(codeOf([&] { OsFileTools::writeAll(writer, content, written); }),
                      isFull ? ENOSPC : error);
            EXPECT_EQ(written, 10 * parts);
            EXPECT_EQ(readFile(file("f")), content.substr(0, 10 * parts));
            EXPECT_EQ(OsFileTools::seek64(writer, 0, OsFileTypes::SeekCurrent), 10 * parts);
        }
}

TEST_F(OsFileFaultTest, InterruptedWritingIsResumed)
{
    OsFileWriter writer(path("f"), usual, false);
    const Fault fault(Call::WRITE, EINTR, 3);
    EXPECT_EQ(writer.write("content", 7), 7U);
    EXPECT_EQ(fault.failures(), 3);
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileFaultTest, WritingGoesOnBehindAPart)
{
    const std::string content = noise(1000);
    OsFileWriter writer(path("f"), usual, false);
    for (const std::size_t part : {1U, 7U, 999U})
    {
        const TransferLimit limit(part);
        const Fault fault(Call::WRITE, EINTR, 2, 1);
        EXPECT_EQ(writer.write(content.data(), 1000), 1000U);
        EXPECT_EQ(fault.failures(), 2);
        EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), 1000);
        EXPECT_TRUE(readFile(file("f")) == content);
        writer.reserve(0);
    }
}

TEST_F(OsFileFaultTest, AFullDiskGivesTheCountUntilThen)
{
    for (const int error : {ENOSPC, EDQUOT})
        for (const int parts : {0, 1, 3})
        {
            OsFileWriter writer(path("f"), usual, false);
            const TransferLimit limit(10);
            const Fault fault(Call::WRITE, error, Fault::ALWAYS, parts);
            const std::string content = noise(100);
            EXPECT_EQ(writer.write(content.data(), 100), 10U * static_cast<unsigned int>(parts));
            EXPECT_EQ(readFile(file("f")), content.substr(0, 10 * static_cast<std::size_t>(parts)));
        }
}

TEST_F(OsFileFaultTest, AWriteThatMakesNoProgressEndsShort)
{
    OsFileWriter writer(path("f"), usual, false);
    const Fault fault(Call::WRITE, 0);
    EXPECT_EQ(writer.write("content", 7), 0U);
    EXPECT_EQ(fault.failures(), 1);
}

TEST_F(OsFileFaultTest, AFailedWriteRaises)
{
    OsFileWriter writer(path("f"), usual, false);
    for (const int error : {EIO, EFBIG, EPIPE})
    {
        const Fault fault(Call::WRITE, error, 1);
        EXPECT_EQ(codeOf([&] { writer.write("content", 7); }), error);
    }
    // Behind a part, too.
    const TransferLimit limit(3);
    const Fault fault(Call::WRITE, EIO, 1, 1);
    EXPECT_EQ(codeOf([&] { writer.write("content", 7); }), EIO);
}

TEST_F(OsFileFaultTest, InterruptedReservingIsResumed)
{
    OsFileWriter writer(path("f"), usual, false);
    const Fault fault(Call::FTRUNCATE, EINTR, 3);
    writer.reserve(100);
    EXPECT_EQ(fault.failures(), 3);
    EXPECT_EQ(std::filesystem::file_size(file("f")), 100U);
}

TEST_F(OsFileFaultTest, FailedReservingRaises)
{
    OsFileWriter writer(path("f"), usual, false);
    {
        const Fault fault(Call::FTRUNCATE, ENOSPC, 1);
        EXPECT_EQ(codeOf([&] { writer.reserve(100); }), ENOSPC);
    }
    const Fault fault(Call::LSEEK, EIO, 1);
    EXPECT_EQ(codeOf([&] { writer.reserve(100); }), EIO);
    EXPECT_EQ(fault.failures(), 1);
}

TEST_F(OsFileFaultTest, FailedSeekingRaises)
{
    OsFileReader reader(made("f", "content"));
    for (const int after : {0, 1})
    {
        const Fault fault(Call::LSEEK, ESPIPE, 1, after);
        EXPECT_EQ(codeOf([&] { reader.seek(3, OsFileTypes::SeekBegin); }), ESPIPE);
    }
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), 0);
}

TEST_F(OsFileFaultTest, InterruptedClosingIsDoneAndNeverRepeated)
{
    OsFileReader reader(made("f", "content"));
    OsFileWriter writer(path("g"), usual, false);
    const Fault fault(Call::CLOSE, EINTR);
    EXPECT_NO_THROW(reader.close());
    EXPECT_NO_THROW(writer.close());
    // A second try would close what another thread has opened since.
    EXPECT_EQ(fault.failures(), 2);
    EXPECT_THROW(reader.close(), ExSysErrorANSI);
}

TEST_F(OsFileFaultTest, AFailedCloseThatReleasedTheDescriptorRaisesOnce)
{
    OsFileReader reader(made("f", "content"));
    OsFileWriter writer(path("g"), usual, false);
    for (const int error : {EIO, ENOSPC, EDQUOT})
    {
        OsFileWriter each(path("g"), usual, false);
        const Fault fault(Call::CLOSE, error);
        EXPECT_EQ(codeOf([&] { each.close(); }), error);
        EXPECT_THROW(each.close(), ExSysErrorANSI);
        EXPECT_EQ(fault.failures(), 1);
    }
    const Fault fault(Call::CLOSE, EIO);
    EXPECT_EQ(codeOf([&] { reader.close(); }), EIO);
    EXPECT_THROW(reader.close(), ExSysErrorANSI);
    EXPECT_EQ(codeOf([&] { writer.close(); }), EIO);
}

TEST_F(OsFileFaultTest, AFailedCloseThatKeptTheDescriptorCanBeTriedAgain)
{
    expectCloseCanBeTriedAgain(Call::CLOSE, EBADF);
}

TEST_F(OsFileFaultTest, DestructorsTellThatClosingFailed)
{
    const OsFilePath existing = made("f", "content");
    const Fault fault(Call::CLOSE, EIO);
    EXPECT_EQ(codeOf([&] { const OsFileReader reader(existing); }), EIO);
    EXPECT_EQ(codeOf([&] { const OsFileWriter writer(path("g"), usual, false); }), EIO);
    // Those that this library's own pointers hold, too.
    EXPECT_EQ(codeOf([&] { const ObjPtr<OsFileReader> reader(new OsFileReader(existing)); }), EIO);
    EXPECT_EQ(
        codeOf([&]
               { const ObjPtr<OsFileWriter> writer(new OsFileWriter(path("g"), usual, false)); }),
        EIO);
    EXPECT_EQ(fault.failures(), 4);
}

TEST_F(OsFileFaultTest, DestructorsHideNoOtherException)
{
    struct Other
    {
    };
    const OsFilePath existing = made("f", "content");
    const Fault fault(Call::CLOSE, EIO);
    EXPECT_THROW(
        {
            const OsFileReader reader(existing);
            const OsFileWriter writer(path("g"), usual, false);
            throw Other();
        },
        Other);
    EXPECT_EQ(fault.failures(), 2);
}

TEST_F(OsFileFaultTest, ADestructorClosesNoClosedObject)
{
    const OsFilePath existing = made("f", "content");
    OsFileReader reader(existing);
    OsFileWriter writer(path("g"), usual, false);
    reader.close();
    writer.close();
    const Fault fault(Call::CLOSE, EIO);
    EXPECT_NO_THROW(reader.~OsFileReader());
    EXPECT_NO_THROW(writer.~OsFileWriter());
    EXPECT_EQ(fault.failures(), 0);
    new (&reader) OsFileReader(existing);
    new (&writer) OsFileWriter(path("g"), usual, false);
}

TEST_F(OsFileFaultTest, WhatReplacesAFileIsPrivateUntilItIsReady)
{
    const support::ModeMaskGuard mask(0);
    const OsFilePath target = made("f", "old");
    std::filesystem::permissions(file("f"), std::filesystem::perms{0664});
    std::vector<unsigned int> modes;
    const support::Before look(Call::FCHMOD,
                               [&]
                               {
                                   for (const auto& entry :
                                        std::filesystem::directory_iterator(_dir.path()))
                                       if (entry.path().filename() != "f")
                                       {
                                           const std::string beside = entry.path().string();
                                           modes.push_back(support::modeOf(beside));
                                           EXPECT_EQ(readFile(beside), "new");
                                       }
                               });
    OsFileTools::replaceAll(target, "new", OsFileTypes::Permissions(7, 7, 7));
    EXPECT_EQ(modes, std::vector<unsigned int>{0600});
    EXPECT_EQ(support::modeOf(file("f")), 0664U);
}

// A file that this process may give to anybody, or a skipped test.
#define ZU_TEST_ASK_FOR_ROOT()                                                                     \
    if (geteuid() != 0) GTEST_SKIP() << "Only root may give files away."

TEST_F(OsFileFaultTest, WhatReplacesAFileHasItsOwnerGroupAndModes)
{
    ZU_TEST_ASK_FOR_ROOT();
    for (const unsigned int mode : {0640U, 0444U, 0600U, 06755U})
    {
        const OsFilePath target = made("f", "old");
        ASSERT_EQ(chown(target.getChars(), 4001, 4002), 0);
        ASSERT_EQ(chmod(target.getChars(), mode), 0);
        OsFileTools::replaceAll(target, "new");
        EXPECT_EQ(readFile(file("f")), "new");
        struct stat status;
        ASSERT_EQ(stat(target.getChars(), &status), 0);
        EXPECT_EQ(status.st_uid, 4001U);
        EXPECT_EQ(status.st_gid, 4002U);
        EXPECT_EQ(status.st_mode & 07777, mode);
        OsFile(target).remove();
    }
}

// Rights granted to the former group would be granted to another one.
TEST_F(OsFileFaultTest, WhereOwnerOrGroupCanNotBeKeptTheRightsThatGoWithThemGo)
{
    ZU_TEST_ASK_FOR_ROOT();
    struct Row
    {
        int _failures;
        int _after;
        unsigned int _owner;
        unsigned int _group;
        unsigned int _mode;
    };
    for (const Row& row : {Row{0, 0, 4001, 4002, 06764}, Row{1, 0, 4001, getegid(), 0744},
                           Row{1, 1, geteuid(), 4002, 0764}, Row{2, 0, geteuid(), getegid(), 0744}})
    {
        const OsFilePath target = made("f", "old");
        ASSERT_EQ(chown(target.getChars(), 4001, 4002), 0);
        ASSERT_EQ(chmod(target.getChars(), 06764), 0);
        {
            const Fault fault(Call::FCHOWN, EPERM, row._failures, row._after);
            OsFileTools::replaceAll(target, "new");
            EXPECT_EQ(fault.failures(), row._failures);
        }
        struct stat status;
        ASSERT_EQ(stat(target.getChars(), &status), 0);
        EXPECT_EQ(status.st_uid, row._owner);
        EXPECT_EQ(status.st_gid, row._group);
        EXPECT_EQ(status.st_mode & 07777, row._mode);
        OsFile(target).remove();
    }
}

TEST_F(OsFileFaultTest, ACopyIsPrivateUntilItHasTheModesOfTheSource)
{
    const support::ModeMaskGuard mask(0);
    made("f", "content");
    std::filesystem::create_directory(file("d"));
    made("d/g", "content");
    for (const char* const name : {"f", "d", "d/g"})
        std::filesystem::permissions(file(name), std::filesystem::perms{0775});
    std::vector<unsigned int> modes;
    const support::Before look(Call::FCHMOD,
                               [&]
                               {
                                   for (const char* const name : {"copy", "tree", "tree/g"})
                                       if (std::filesystem::exists(file(name)))
                                           modes.push_back(support::modeOf(file(name)));
                               });
    OsFileTools::copyWithModesAndTimes(path("f"), path("copy"));
    std::filesystem::remove(file("copy"));
    OsFileTools::copyWithModesAndTimes(path("d"), path("tree"));
    EXPECT_EQ(modes, (std::vector<unsigned int>{0600, 0700, 0600, 0700, 0775}));
    EXPECT_EQ(support::modeOf(file("tree")), 0775U);
}

TEST_F(OsFileFaultTest, ACopyWhoseModesOrTimesCanNotBeKeptRaises)
{
    std::filesystem::create_directory(file("d"));
    made("d/f", "content");
    for (const char* const name : {"d/f", "d"})
        for (const Call call : {Call::FCHMOD, Call::FUTIMENS, Call::READ, Call::WRITE, Call::CLOSE})
        {
            const bool isDirectory = std::string(name) == "d";
            if (isDirectory && call != Call::FCHMOD && call != Call::FUTIMENS) continue;
            // Of the directory, behind the file that is in it.
            const Fault fault(call, EIO, 1, isDirectory ? 1 : 0);
            EXPECT_EQ(codeOf([&] { OsFileTools::copyWithModesAndTimes(path(name), path("copy")); }),
                      EIO);
            EXPECT_EQ(fault.failures(), 1);
            std::filesystem::remove_all(file("copy"));
        }
    // The first look is at the source.
    const Fault fault(Call::FSTAT, EIO);
    for (const char* const name : {"d/f", "d"})
    {
        EXPECT_EQ(codeOf([&] { OsFileTools::copyWithModesAndTimes(path(name), path("copy")); }),
                  EIO);
        EXPECT_FALSE(std::filesystem::exists(file("copy")));
    }
}

TEST_F(OsFileFaultTest, WhatHasNoEndIsNotCopiedWithModesAndTimes)
{
    support::makeFifo(file("fifo"));
    for (const OsFilePath& source : {path("fifo"), OsFilePath("/dev/null")})
        EXPECT_THROW(OsFileTools::copyWithModesAndTimes(source, path("copy")),
                     OsFileEx::ExInvalidPath);
    EXPECT_FALSE(std::filesystem::exists(file("copy")));
}

// A copy would wait for the other end of a FIFO, and a socket can't be opened.
TEST_F(OsFileFaultTest, ATreeWithWhatIsNoFileIsRefusedBeforeAnythingIsMade)
{
    const auto isRefused = [this](const std::string& special)
    {
        const std::string reason = "Invalid path: '" + file(special) + "'.";
        const std::function<void()> copies[] = {
            [&] { OsDirectory(path("d")).copyTo(path("copy")); },
            [&] { OsDirectory::copyHierarchy(path("d"), path("copy")); },
            [&] { OsFileTools::copyWithModesAndTimes(path("d"), path("copy")); }};
        for (const std::function<void()>& copy : copies) try
            {
                copy();
                ADD_FAILURE() << "nothing raised";
            }
            catch (const OsFileEx::ExInvalidPath& ex)
            {
                EXPECT_EQ(ex.getReason(), reason);
            }
        EXPECT_FALSE(std::filesystem::exists(file("copy")));
        std::filesystem::remove(file(special));
    };
    std::filesystem::create_directories(file("d/a/b"));
    made("d/a/f", "content");
    support::makeFifo(file("d/a/b/fifo"));
    isRefused("d/a/b/fifo");
    support::makeSocket(file("d/a/socket"));
    isRefused("d/a/socket");
    support::makeFifo(file("fifo"));
    std::filesystem::create_symlink(file("fifo"), file("d/a/link"));
    isRefused("d/a/link");
    std::filesystem::create_symlink("/dev/zero", file("d/zero"));
    isRefused("d/zero");
    OsDirectory(path("d")).copyTo(path("copy"));
    EXPECT_EQ(readFile(file("copy/a/f")), "content");
}

TEST_F(OsFileFaultTest, WhatOthersLeftBesideStays)
{
    const OsFilePath target = made("f", "old");
    const auto leftBeside = [this](int number)
    {
        return file("." + std::to_string(support::processId()) + "-" + std::to_string(number) +
                    ".new");
    };
    for (int i = 0; i < 1000; ++i) writeFile(leftBeside(i), "left");
    OsFileTools::replaceAll(target, "new");
    EXPECT_EQ(readFile(file("f")), "new");
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(readFile(leftBeside(i)), "left");
}

TEST_F(OsFileFaultTest, AFileThatMayNotGetLongerRaisesBehindWhatFits)
{
    OsFileWriter writer(path("f"), usual, false);
    const std::string content = noise(150000);
    {
        const support::SizeLimit limit(100000);
        EXPECT_EQ(codeOf([&] { writer.write(content.data(), 150000); }), EFBIG);
        EXPECT_EQ(codeOf([&] { writer.reserve(100001); }), EFBIG);
        EXPECT_NO_THROW(writer.reserve(100000));
    }
    EXPECT_TRUE(readFile(file("f")) == content.substr(0, 100000));
    writer.close();
    OsFile source(made("source", content));
    const support::SizeLimit limit(100000);
    EXPECT_EQ(codeOf([&] { source.copyTo(path("g")); }), EFBIG);
    EXPECT_TRUE(readFile(file("source")) == content);
}

TEST_F(OsFileFaultTest, ADirectoryThatMayNotBeWrittenKeepsWhatIsInIt)
{
    std::filesystem::permissions(_dir.path(), std::filesystem::perms{0755});
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_directory(file("d/sub"));
    OsFile inside(made("d/f", "content"));
    std::filesystem::permissions(file("d/f"), std::filesystem::perms{0444});
    std::filesystem::permissions(file("d"), std::filesystem::perms{0555});
    {
        const support::OrdinaryUser user;
        EXPECT_EQ(inside.getAccess(), OsFileTypes::AccessRead);
        EXPECT_EQ(codeOf([&] { OsFileWriter writer(path("d/new"), usual, true); }), EACCES);
        EXPECT_EQ(codeOf([&] { inside.remove(); }), EACCES);
        EXPECT_EQ(codeOf([&] { inside.renameTo(path("d/g")); }), EACCES);
        EXPECT_EQ(codeOf([&] { inside.copyTo(path("d/g")); }), EACCES);
        EXPECT_EQ(codeOf([&] { OsDirectory(path("d/sub")).remove(); }), EACCES);
        EXPECT_EQ(codeOf([&] { OsDirectory(path("d/other")).create(usual); }), EACCES);
        EXPECT_EQ(codeOf([&] { OsFileTools::removeWithAllContents(path("d")); }), EACCES);
        EXPECT_EQ(codeOf([&] { OsFileTools::replaceAll(path("d/f"), "new"); }), EACCES);
        EXPECT_THROW(inside.copyTo(path("d/f")), OsFileEx::ExPathNotWritable);
    }
    EXPECT_EQ(readFile(file("d/f")), "content");
    std::filesystem::permissions(file("d"), std::filesystem::perms{0755});
    const support::Tree left = support::treeAt(file("d"));
    EXPECT_EQ(left, (support::Tree{{"f", "content"}, {"sub", support::DIRECTORY_MARK}}));
}

TEST_F(OsFileFaultTest, AFifoIsNotReplaced)
{
    support::makeFifo(file("fifo"));
    std::filesystem::create_symlink(file("fifo"), file("link"));
    for (const char* const name : {"fifo", "link"})
        EXPECT_THROW(OsFileTools::replaceAll(path(name), "x"), OsFileEx::ExInvalidPath);
    EXPECT_TRUE(std::filesystem::is_fifo(file("fifo")));
    EXPECT_TRUE(std::filesystem::is_symlink(file("link")));
    // One of the system's own links, whose text leads nowhere.
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::string pipeEnd = "/proc/self/fd/" + std::to_string(ends[1]);
    EXPECT_THROW(OsFileTools::replaceAll(OsFilePath(pipeEnd.c_str()), "x"),
                 OsFileEx::ExInvalidPath);
    for (const int end : ends) close(end);
}

TEST_F(OsFileFaultTest, AFailedCloseOfATrialIsNoMatter)
{
    const OsFile plain(made("f", "content"));
    const Fault fault(Call::CLOSE, EIO);
    EXPECT_EQ(plain.getAccess(), 3);
    EXPECT_EQ(fault.failures(), 2);
}

TEST_F(OsFileFaultTest, AnyFailureOfATrialIsNoAccess)
{
    const OsFile plain(made("f", "content"));
    for (const int error : {EACCES, EROFS, EMFILE, EIO})
    {
        const Fault fault(Call::OPEN, error);
        EXPECT_EQ(plain.getAccess(), 0);
        EXPECT_FALSE(plain.isReadable());
        EXPECT_FALSE(plain.isWritable());
    }
    {
        const Fault fault(Call::OPEN, EROFS, 1, 1);
        EXPECT_EQ(plain.getAccess(), 1);
    }
    {
        const Fault fault(Call::OPEN, EINTR, 2);
        EXPECT_EQ(plain.getAccess(), 3);
    }
    const Fault fault(Call::STAT, EIO);
    EXPECT_EQ(plain.getAccess(), 0);
}

TEST_F(OsFileFaultTest, ACopyOntoAFileThatMayNotBeWrittenIsRefused)
{
    OsFile plain(made("f", "content"));
    const OsFilePath target = made("g", "kept");
    {
        const Fault fault(Call::OPEN, EACCES, 1);
        EXPECT_THROW(plain.copyTo(target), OsFileEx::ExPathNotWritable);
    }
    EXPECT_EQ(readFile(file("g")), "kept");
}

TEST_F(OsFileFaultTest, ACopyThatFailsHalfWayLeavesTheSource)
{
    const std::string content = noise(200000);
    OsFile plain(made("f", content));
    const OsFilePath target = path("g");
    for (const int error : {ENOSPC, EDQUOT, EIO})
    {
        const Fault fault(Call::WRITE, error, Fault::ALWAYS, 2);
        // A full disk is one code, whatever was the reason.
        EXPECT_EQ(codeOf([&] { plain.copyTo(target); }), error == EIO ? EIO : ENOSPC);
        EXPECT_TRUE(readFile(file("g")) == content.substr(0, 131072));
    }
    {
        const Fault fault(Call::READ, EIO, Fault::ALWAYS, 1);
        EXPECT_EQ(codeOf([&] { plain.copyTo(target); }), EIO);
    }
    EXPECT_TRUE(readFile(file("g")) == content.substr(0, 65536));
    EXPECT_TRUE(readFile(file("f")) == content);
}

TEST_F(OsFileFaultTest, AnInterruptedCopyIsWhole)
{
    const std::string content = noise(200000);
    OsFile plain(made("f", content));
    const Fault opens(Call::OPEN, EINTR, 2);
    const Fault reads(Call::READ, EINTR, 2, 1);
    const Fault writes(Call::WRITE, EINTR, 2, 1);
    const Fault closes(Call::CLOSE, EINTR);
    const TransferLimit limit(1000);
    plain.copyTo(path("g"));
    EXPECT_EQ(opens.failures(), 2);
    EXPECT_EQ(reads.failures(), 2);
    EXPECT_EQ(writes.failures(), 2);
    EXPECT_EQ(closes.failures(), 2);
    EXPECT_TRUE(readFile(file("g")) == content);
}

TEST_F(OsFileFaultTest, ACopyWhoseLastBytesAreLostAtClosingRaises)
{
    OsFile plain(made("f", "content"));
    for (const int after : {0, 1})
    {
        const Fault fault(Call::CLOSE, EIO, 1, after);
        EXPECT_EQ(codeOf([&] { plain.copyTo(path("new" + std::to_string(after))); }), EIO);
    }
    const Fault fault(Call::CLOSE, EBADF, 1);
    EXPECT_EQ(codeOf([&] { plain.copyTo(path("kept")); }), EBADF);
}

TEST_F(OsFileFaultTest, ASourceThatCanNotBeOpenedLeavesTheTarget)
{
    OsFile plain(made("f", "content"));
    const OsFilePath target = made("g", "kept");
    {
        // The first look is at the target.
        const Fault fault(Call::OPEN, EACCES, 1, 1);
        EXPECT_EQ(codeOf([&] { plain.copyTo(target); }), EACCES);
        EXPECT_EQ(fault.failures(), 1);
    }
    EXPECT_EQ(readFile(file("g")), "kept");
}

TEST_F(OsFileFaultTest, RenamingWorksAndReplacesNothingWhereTheFileSystemHasNoSuchCall)
{
    for (const int error : {EINVAL, ENOSYS})
    {
        OsFile plain(made("f", "content"));
        made("g", "kept");
        std::filesystem::remove(file("dangling"));
        std::filesystem::create_symlink(file("missing"), file("dangling"));
        std::filesystem::remove(file("new"));
        const Fault fault(Call::RENAMEAT2, error);
        EXPECT_EQ(codeOf([&] { plain.renameTo(path("g")); }), EEXIST);
        EXPECT_EQ(codeOf([&] { plain.renameTo(path("dangling")); }), EEXIST);
        EXPECT_STREQ(plain.getPath().getChars(), file("f").c_str());
        EXPECT_EQ(readFile(file("g")), "kept");
        {
            const Fault failing(Call::RENAME, EXDEV);
            EXPECT_EQ(codeOf([&] { plain.renameTo(path("new")); }), EXDEV);
            EXPECT_EQ(failing.failures(), 1);
        }
        plain.renameTo(path("new"));
        EXPECT_STREQ(plain.getPath().getChars(), file("new").c_str());
        EXPECT_EQ(readFile(file("new")), "content");
        EXPECT_EQ(codeOf([&] { OsFile(path("f")).renameTo(path("newer")); }), ENOENT);
        EXPECT_EQ(fault.failures(), 5);
    }
}

TEST_F(OsFileFaultTest, OtherFailuresOfRenamingAreNotTriedAnotherWay)
{
    OsFile plain(made("f", "content"));
    for (const int error : {EXDEV, EACCES, EROFS, EEXIST})
    {
        const Fault fault(Call::RENAMEAT2, error);
        EXPECT_EQ(codeOf([&] { plain.renameTo(path("g")); }), error);
    }
    EXPECT_FALSE(std::filesystem::exists(file("g")));
}

TEST_F(OsFileFaultTest, AnOwnerWhoseEntryIsLongIsTold)
{
    const OsFile plain(made("f", "content"));
    const ArrayPtr<char> expected(plain.getOwner());
    const Fault fault(Call::GETPWUID_R, ERANGE, 5);
    const ArrayPtr<char> owner(plain.getOwner());
    EXPECT_STREQ(owner.get(), expected.get());
    EXPECT_EQ(fault.failures(), 5);
}

TEST_F(OsFileFaultTest, AnOwnerWithoutANameIsANumber)
{
    const OsFile plain(made("f", "content"));
    const FalseStatus status(4000000001, 0);
    for (const int error : {0, ENOENT, EIO})
    {
        const Fault fault(Call::GETPWUID_R, error);
        const ArrayPtr<char> owner(plain.getOwner());
        EXPECT_STREQ(owner.get(), "4000000001");
    }
    const ArrayPtr<char> owner(plain.getOwner());
    EXPECT_STREQ(owner.get(), "4000000001");
}

TEST_F(OsFileFaultTest, AYearThatDatesDoNotReachIsAllOnes)
{
    const OsFile plain(made("f", "content"));
    // The years 40000 and 1500.
    for (const std::int64_t time : {std::int64_t{1200000000000}, std::int64_t{-14800000000}})
    {
        const FalseStatus status(0, time);
        const ObjPtr<OsDateTypes::DateRep> modified(plain.getLastModificationTime());
        EXPECT_EQ(modified->_high, 0xffffffffU);
        EXPECT_EQ(modified->_low, 0xffffffffU);
        const ObjPtr<OsDateTypes::DateRep> accessed(plain.getLastAccessTime());
        EXPECT_EQ(accessed->_high, 0xffffffffU);
        EXPECT_EQ(accessed->_low, 0xffffffffU);
    }
}

// Of a year whose number has the same 16 bits as one that dates reach, too.
TEST_F(OsFileFaultTest, AYearBeyond16BitsIsAllOnes)
{
    const OsFile plain(made("f", "content"));
    const std::int64_t secondsPer400Years = 146097LL * 86400;
    // In 16 bits 67560 and 133080 are 2024 and 2008, -63536 is 2000.
    for (const std::int64_t cycles : {164LL, 328LL, -164LL})
    {
        const FalseStatus status(0, 1700000000 + cycles * secondsPer400Years);
        const ObjPtr<OsDateTypes::DateRep> date(plain.getLastModificationTime());
        EXPECT_EQ(date->_high, 0xffffffffU) << cycles;
        EXPECT_EQ(date->_low, 0xffffffffU) << cycles;
    }
}

// The two occurrences of an hour at the end of daylight saving are distinguished.
TEST_F(OsFileFaultTest, EveryTenMinutesOfAYearAreToldWhereverTheProcessIs)
{
    const OsFile plain(made("f", "content"));
    const support::VariableGuard zone("TZ");
    constexpr std::int64_t beginOf2024 = 1704067200;
    constexpr std::int64_t secondsTo1970 = 11644473600;
    for (const char* const rules : {"CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0"})
    {
        zone.set(rules);
        int wrong = 0;
        for (int i = 0; i < 366 * 24 * 6; ++i)
        {
            const std::int64_t time = beginOf2024 + i * 600;
            const auto count = static_cast<std::uint64_t>((time + secondsTo1970) * 10000000);
            const FalseStatus status(0, time);
            const auto isRight = [count](const OsDateTypes::DateRep& date)
            { return (std::uint64_t{date._high} << 32 | date._low) == count; };
            const ObjPtr<OsDateTypes::DateRep> modified(plain.getLastModificationTime());
            const ObjPtr<OsDateTypes::DateRep> accessed(plain.getLastAccessTime());
            wrong += isRight(*modified) && isRight(*accessed) ? 0 : 1;
        }
        EXPECT_EQ(wrong, 0) << rules;
    }
}

TEST_F(OsFileFaultTest, ATimeThatHasNoYearRaises)
{
    const OsFile plain(made("f", "content"));
    const FalseStatus status(0, INT64_MAX);
    EXPECT_EQ(codeOf([&] { plain.getLastModificationTime(); }), EOVERFLOW);
    EXPECT_EQ(codeOf([&] { plain.getLastAccessTime(); }), EOVERFLOW);
}

TEST_F(OsFileFaultTest, AFailedLookAtTheFileRaises)
{
    const OsFile plain(made("f", "content"));
    const auto code = [](auto act)
    {
        // The first call checks its existence.
        const Fault fault(Call::STAT, EIO, Fault::ALWAYS, 1);
        return codeOf(act);
    };
    EXPECT_EQ(code([&] { plain.getSize(); }), EIO);
    EXPECT_EQ(code([&] { plain.getType(); }), EIO);
    EXPECT_EQ(code([&] { plain.isFile(); }), EIO);
    EXPECT_EQ(code([&] { plain.getOwner(); }), EIO);
    EXPECT_EQ(code([&] { plain.getLastModificationTime(); }), EIO);
    EXPECT_EQ(code([&] { plain.getLastAccessTime(); }), EIO);
}

TEST_F(OsFileFaultTest, AVolumeOfAnotherMachineHasNoUnbufferedTransfers)
{
    const OsFile plain(made("f", "content"));
    {
        const FalseVolume volume(0x6969, 8192);
        try
        {
            plain.getUnbufferedInfo();
            ADD_FAILURE() << "nothing raised";
        }
        catch (const OsFileEx::ExNoRemoteUnbuffered& ex)
        {
            EXPECT_EQ(ex.getReason(), "Unbuffered IO is impossible on a remote drive: '" +
                                          file("f") + "' is a remote path.");
        }
    }
    {
        const FalseVolume volume(0xef53, 8192);
        const ObjPtr<OsFileTypes::UnbufferedInfo> info(plain.getUnbufferedInfo());
        EXPECT_EQ(info->getAlignment(), 8192U);
        EXPECT_EQ(info->getBlockSize(), 8192U);
        EXPECT_EQ(info->getMaxSize(), 2147483647U);
    }
    const Fault fault(Call::STATFS, EIO);
    EXPECT_EQ(codeOf([&] { plain.getUnbufferedInfo(); }), EIO);
}

TEST_F(OsFileFaultTest, AFailedScanIsNoEnd)
{
    made("a", "");
    made("b", "");
    const char* name = nullptr;
    const std::string directory = std::filesystem::path(file("a")).parent_path().string();
    {
        const Fault fault(Call::OPEN, EMFILE);
        Platform::Scan scan(directory.c_str());
        EXPECT_EQ(scan.next(name), Platform::Scan::Result::Failed);
        EXPECT_EQ(errno, EMFILE);
    }
    {
        const Fault fault(Call::FDOPENDIR, ENOMEM);
        Platform::Scan scan(directory.c_str());
        EXPECT_EQ(scan.next(name), Platform::Scan::Result::Failed);
        EXPECT_EQ(fault.failures(), 1);
    }
    const Fault fault(Call::READDIR, EIO, 1);
    Platform::Scan scan(directory.c_str());
    EXPECT_EQ(scan.next(name), Platform::Scan::Result::Failed);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(scan.next(name), Platform::Scan::Result::Name);
}

TEST_F(OsFileFaultTest, AFailedFlushIsTold)
{
    const Platform::Handle handle =
        Platform::openExisting(made("f", "").getChars(), OsFileTypes::AccessWrite);
    {
        const Fault fault(Call::FSYNC, EIO);
        EXPECT_FALSE(Platform::flush(handle));
        EXPECT_EQ(errno, EIO);
        // For a directory it is only attempted.
        Platform::flushDirectoryOf(file("f").c_str());
        EXPECT_EQ(fault.failures(), 2);
    }
    EXPECT_TRUE(Platform::flush(handle));
    EXPECT_EQ(Platform::close(handle), Platform::Closed::Done);
}

TEST_F(OsFileFaultTest, AFailedReplacementLeavesTheFileAndNothingBeside)
{
    std::filesystem::create_directory(file("d"));
    const OsFilePath target = made("d/f", "old");
    for (const Call call : {Call::OPEN, Call::WRITE, Call::FSYNC, Call::CLOSE, Call::RENAME})
    {
        {
            const Fault fault(call, ENOSPC, 1);
            EXPECT_NE(codeOf([&] { OsFileTools::replaceAll(target, "new"); }), 0)
                << static_cast<int>(call);
            EXPECT_EQ(fault.failures(), 1) << static_cast<int>(call);
        }
        EXPECT_EQ(readFile(file("d/f")), "old") << static_cast<int>(call);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file("d")), {}), 1);
    }
    OsFileTools::replaceAll(target, "new");
    EXPECT_EQ(readFile(file("d/f")), "new");
}

TEST_F(OsFileFaultTest, AFifoIsSpecialAndAskingAboutItDoesNotWaitForItsOtherEnd)
{
    support::makeFifo(file("fifo"));
    const OsFile fifo(path("fifo"));
    EXPECT_EQ(fifo.getType(), OsFileTypes::ElementSpecial);
    EXPECT_FALSE(fifo.isFile());
    EXPECT_FALSE(fifo.isDirectory());
    EXPECT_EQ(fifo.getAccess(), 3);
    EXPECT_EQ(fifo.getSize(), 0U);
    OsFile(path("fifo")).remove();
    EXPECT_FALSE(fifo.exists());
}

// A reader whose file has this number.
int descriptorOfNext(const OsFilePath& path)
{
    const Platform::Handle handle = Platform::openExisting(path.getChars(), 1);
    Platform::close(handle);
    return static_cast<int>(handle);
}

class StandardDescriptorsTest : public OsFileFaultTest
{
protected:
    ~StandardDescriptorsTest() override
    {
        dup2(_saved, STDIN_FILENO);
        close(_saved);
    }

    // Closed from the first to the last of a test.
    const int _saved = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 100);
};

TEST_F(StandardDescriptorsTest, AFileNeverTakesTheNumberOfOne)
{
    const OsFilePath existing = made("f", "content");
    close(STDIN_FILENO);
    EXPECT_GT(descriptorOfNext(existing), STDERR_FILENO);
    // The number is free again, and the file is closed in the children.
    const int next = open(existing.getChars(), O_RDONLY);
    EXPECT_EQ(next, STDIN_FILENO);
    close(next);
    const Platform::Handle handle = Platform::openExisting(existing.getChars(), 1);
    EXPECT_EQ(fcntl(static_cast<int>(handle), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(Platform::close(handle), Platform::Closed::Done);
}

TEST_F(StandardDescriptorsTest, WithoutAnotherNumberOpeningFails)
{
    const OsFilePath existing = made("f", "content");
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &old), 0);
    close(STDIN_FILENO);
    {
        const rlimit few{STDERR_FILENO + 1, old.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
        // A number that is impossible under the limit is invalid.
        EXPECT_EQ(codeOf([&] { const OsFileReader reader(existing); }), EINVAL);
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &old), 0);
    }
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
}

TEST(OsUtilsFaultTest, AnInterruptedSleepGoesOnForWhatIsLeft)
{
    {
        const Fault fault(Call::NANOSLEEP, EINTR, 3);
        // Three times a second less is left.
        Zu::OsUtils::sleep(3);
        EXPECT_EQ(fault.failures(), 3);
        EXPECT_EQ(support::secondsOfLastSleep(), 1);
    }
    const Fault fault(Call::NANOSLEEP, 0);
    Zu::OsUtils::sleep(1000000);
    EXPECT_EQ(fault.failures(), 1);
    EXPECT_EQ(support::secondsOfLastSleep(), 1000000);
}

// The code of the C runtime that an act raises; 0 if it raises none.
template <class Act> int errnoOf(Act act)
{
    try
    {
        act();
    }
    catch (const ExSysErrorANSI& ex)
    {
        return ex.getError();
    }
    return 0;
}

TEST(OsCpuInfoFaultTest, AClockWithoutAResolutionRaises)
{
    const Fault fault(Call::CLOCK_GETRES, EPERM);
    EXPECT_EQ(errnoOf([] { Zu::OsCpuInfo::initialize(); }), EPERM);
    EXPECT_EQ(fault.failures(), 1);
}

TEST(OsUtilsFaultTest, AHostWithoutANameRaises)
{
    const Fault fault(Call::GETHOSTNAME, ENAMETOOLONG);
    EXPECT_EQ(errnoOf([] { Zu::OsUtils::getHostName(); }), ENAMETOOLONG);
}

TEST(OsUtilsFaultTest, AUserWithoutANameRaises)
{
    {
        const Fault fault(Call::GETPWUID_R, EIO);
        EXPECT_EQ(errnoOf([] { Zu::OsUtils::getUserName(false); }), EIO);
    }
    // No failure, but no entry either.
    const Fault fault(Call::GETPWUID_R, 0);
    EXPECT_EQ(errnoOf([] { Zu::OsUtils::getUserName(true); }), ENOENT);
}

TEST(OsUtilsFaultTest, AUserWhoseEntryIsLongOrWhoseAnswerIsInterruptedHasTheSameName)
{
    const ArrayPtr<char> expected(Zu::OsUtils::getUserName(false));
    for (const int error : {ERANGE, EINTR})
    {
        const Fault fault(Call::GETPWUID_R, error, 5);
        const ArrayPtr<char> name(Zu::OsUtils::getUserName(false));
        EXPECT_STREQ(name.get(), expected.get());
        EXPECT_EQ(fault.failures(), 5);
    }
}

} // namespace
