// What the file classes do when calls of the system fail; Linux only, in a program of its own.

#include "base/osFilePlatform.h"

#include "base/exSysError.h"
#include "base/lgInterProcessLock.h"
#include "base/osDirectory.h"
#include "base/osFile.h"
#include "base/osFileEx.h"
#include "base/osFileReader.h"
#include "base/osFileTools.h"
#include "base/osFileWriter.h"
#include "support/errorCode.h"
#include "support/faults.h"
#include "support/faultTest.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <new>
#include <pthread.h>
#include <string>
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
    const support::Before look(Call::FSYNC,
                               [&]
                               {
                                   for (const auto& entry :
                                        std::filesystem::directory_iterator(_dir.path()))
                                       if (entry.path().filename() != "f")
                                           modes.push_back(support::modeOf(entry.path().string()));
                               });
    OsFileTools::replaceAll(target, "new", OsFileTypes::Permissions(7, 7, 7));
    // The second time it is the directory that is flushed, and nothing stands beside any more.
    EXPECT_EQ(modes, std::vector<unsigned int>{0600});
    EXPECT_EQ(support::modeOf(file("f")), 0664U);
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
    EXPECT_THROW(OsFileTools::replaceAll(path("fifo"), "x"), OsFileEx::ExInvalidPath);
    EXPECT_TRUE(std::filesystem::is_fifo(file("fifo")));
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
        // The first look is whether it is there.
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
        const Fault fault(Call::OPENDIR, EMFILE);
        Platform::Scan scan(directory.c_str());
        EXPECT_EQ(scan.next(name), Platform::Scan::Result::Failed);
        EXPECT_EQ(errno, EMFILE);
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
        // Of a directory it is no more than an attempt.
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

} // namespace
