// What a log file does when system calls fail, and with what only Linux has: pipes and terminals as
// files, limits, modes; in a separate program.

#include "app/lgServiceFile.h"

#include "app/lgServiceLog.h"
#include "stress/hardEnd.h"
#include "support/commaLocale.h"
#include "support/faults.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using support::Call;
using support::Fault;
using support::readFile;
using support::TransferLimit;
using support::writeFile;
using Zu::LgServiceFile;

void expectWritten(LgServiceFile& log, std::string_view text)
{
    const LgServiceFile::Written written = log.write(text);
    EXPECT_EQ(written._size, text.size());
    EXPECT_EQ(written._error, 0);
}

void expectStopped(const LgServiceFile::Written& written, std::size_t size, int error)
{
    EXPECT_EQ(written._size, size);
    EXPECT_EQ(written._error, error);
}

// Closes its descriptor.
class Descriptor
{
public:
    explicit Descriptor(int number) : _number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    ~Descriptor()
    {
        close(_number);
    }

    int get() const
    {
        return _number;
    }

private:
    int _number;
};

std::string readOnce(int descriptor)
{
    char buffer[100];
    const ssize_t size = read(descriptor, buffer, sizeof buffer);
    return size < 0 ? "error" : std::string(buffer, static_cast<std::size_t>(size));
}

class LgServiceFileFaultTest : public testing::Test
{
protected:
    ~LgServiceFileFaultTest() override
    {
        EXPECT_EQ(support::openHandles(), _before);
    }

    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

    support::TempDir _dir;

private:
    std::size_t _before = support::openHandles();
};

TEST_F(LgServiceFileFaultTest, InterruptedAndPartialWritesGoOn)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    {
        const Fault fault(Call::WRITE, EINTR, 3);
        expectWritten(log, "abc");
        EXPECT_EQ(fault.failures(), 3);
    }
    {
        const TransferLimit limit(4);
        const Fault fault(Call::WRITE, EINTR, 2, 1);
        expectWritten(log, "0123456789");
        EXPECT_EQ(fault.failures(), 2);
    }
    EXPECT_EQ(readFile(file("log")), "abc0123456789");
    EXPECT_FALSE(log.isTruncated());
}

TEST_F(LgServiceFileFaultTest, TheAccountOfAStoppedWriteIsExact)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    {
        const TransferLimit limit(4);
        const Fault fault(Call::WRITE, ENOSPC, Fault::ALWAYS, 2);
        expectStopped(log.write("0123456789"), 8, ENOSPC);
        expectStopped(log.write("89"), 0, ENOSPC);
        EXPECT_EQ(fault.failures(), 2);
    }
    // The same object goes on when there is room again.
    expectWritten(log, "89");
    EXPECT_EQ(readFile(file("log")), "0123456789");
    EXPECT_FALSE(log.isTruncated());
}

// Wherever the system stops, each line is there once; half a line stands on a line of its own.
TEST_F(LgServiceFileFaultTest, ALogWithPartOfALineHasTheWholeLineOnce)
{
    const support::RunningLogger logger;
    const std::string text = "one\ntwo\n";
    const std::vector<Zu::LgServiceLog::Line> lines{{4, true}, {4, true}};
    for (std::size_t taken = 0; taken <= text.size(); ++taken)
    {
        const std::string path = file("log" + std::to_string(taken));
        Zu::LgServiceLog log(path);
        ASSERT_TRUE(log.prepare(0));
        log.write({}, {});
        const std::string dates = readFile(path);
        {
            const support::StreamCapture errors(std::cerr);
            ASSERT_TRUE(log.prepare(text.size(), lines.size()));
            const TransferLimit limit(taken == 0 ? 1 : taken);
            const Fault fault(Call::WRITE, ENOSPC, Fault::ALWAYS, taken == 0 ? 0 : 1);
            log.write(text, lines);
        }
        {
            const support::StreamCapture errors(std::cerr);
            log.tryNow();
            if (log.prepare(0)) log.write({}, {});
            ASSERT_TRUE(log.prepare(6, 1));
            log.write("three\n", {{6, true}});
        }
        const std::string fragment = text.substr(taken / 4 * 4, taken % 4);
        const bool isWhole = fragment.size() == 3;
        const std::string expected = text.substr(0, taken) + (fragment.empty() ? "" : "\n") +
                                     text.substr((taken + (isWhole ? 1 : 0)) / 4 * 4) + "three\n";
        EXPECT_EQ(readFile(path), dates + expected) << taken;
    }
}

// Whoever has copied what waits has to copy all of it when its beginning is written.
TEST_F(LgServiceFileFaultTest, ALogOfWhichAPartIsWrittenHasChanged)
{
    const support::RunningLogger logger;
    const support::StreamCapture errors(std::cerr);
    Zu::LgServiceLog log(file("log"));
    ASSERT_TRUE(log.prepare(0));
    log.write({}, {});
    const auto write = [&log](const std::string& text, std::size_t taken)
    {
        log.tryNow();
        ASSERT_TRUE(log.prepare(text.size(), 1));
        const TransferLimit limit(taken == 0 ? 1 : taken);
        const Fault fault(Call::WRITE, ENOSPC, Fault::ALWAYS, taken == 0 ? 0 : 1);
        log.write(text, {{static_cast<std::uint32_t>(text.size()), true}});
    };
    write("one\n", 0);
    const std::uint64_t first = log.getChanges();
    write("two\n", 0);
    EXPECT_EQ(log.getWaiting(), "one\ntwo\n");
    EXPECT_EQ(log.getChanges(), first);
    write("three\n", 4);
    EXPECT_EQ(log.getWaiting(), "two\nthree\n");
    EXPECT_NE(log.getChanges(), first);
    log.takeWaiting();
}

TEST_F(LgServiceFileFaultTest, ASystemThatTakesNothingIsAnError)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    {
        const TransferLimit limit(4);
        const Fault fault(Call::WRITE, 0, Fault::ALWAYS, 1);
        expectStopped(log.write("0123456789"), 4, EIO);
        EXPECT_EQ(fault.failures(), 1);
    }
    expectWritten(log, "456789");
    EXPECT_EQ(readFile(file("log")), "0123456789");
}

TEST_F(LgServiceFileFaultTest, WhatIsBeyondTheLimitOfTheProcessIsNotTaken)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    {
        const support::SizeLimit limit(10);
        expectStopped(log.write("0123456789abc"), 10, EFBIG);
        expectStopped(log.write("abc"), 0, EFBIG);
    }
    expectWritten(log, "abc");
    EXPECT_EQ(readFile(file("log")), "0123456789abc");
}

// Devices go by a link in the directory of the test: were they rotated after all, the link would be
// renamed, and not a device of the machine.
class LgServiceFileDeviceTest : public LgServiceFileFaultTest
{
protected:
    std::string linkTo(const std::string& device) const
    {
        std::filesystem::remove(file("log"));
        std::filesystem::create_symlink(device, file("log"));
        return file("log");
    }

    void expectNotRotated(LgServiceFile& log) const
    {
        const bool wasOpen = log.isOpen();
        const auto before = std::filesystem::read_symlink(file("log"));
        EXPECT_FALSE(log.isRotationDue(100, std::time(nullptr) + 1000000));
        EXPECT_EQ(log.rotate(), 0);
        EXPECT_EQ(log.isOpen(), wasOpen);
        ASSERT_TRUE(std::filesystem::is_symlink(file("log")));
        EXPECT_EQ(std::filesystem::read_symlink(file("log")), before);
    }
};

TEST_F(LgServiceFileDeviceTest, DevicesAreWrittenToAndNeverRotated)
{
    struct Row
    {
        const char* _path;
        std::size_t _size;
        int _error;
    };
    for (const auto& [path, size, error] : {Row{"/dev/null", 4, 0}, Row{"/dev/full", 0, ENOSPC}})
    {
        char byte = '#';
        LgServiceFile log(linkTo(path), {1, 0, 3});
        expectNotRotated(log);
        ASSERT_EQ(log.open(), 0) << path;
        expectNotRotated(log);
        expectStopped(log.write("text"), size, error);
        expectNotRotated(log);
        EXPECT_TRUE(log.getIdentity());
        EXPECT_EQ(log.getSize(), 0U);
        EXPECT_FALSE(log.isReplaced());
        EXPECT_FALSE(log.isTruncated());
        EXPECT_EQ(log.readAt(0, &byte, 1), -1);
        EXPECT_TRUE(log.sync());
    }
}

class LgServiceFilePipeTest : public LgServiceFileFaultTest
{
protected:
    LgServiceFilePipeTest()
    {
        support::makeFifo(file("pipe"));
    }

    int openReader() const
    {
        return open(file("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }
};

TEST_F(LgServiceFilePipeTest, APipeWithoutAReaderIsAnErrorAndNothingWaits)
{
    LgServiceFile log(file("pipe"), {1, 0, 3});
    EXPECT_EQ(log.open(), ENXIO);
    EXPECT_FALSE(log.isOpen());
    std::filesystem::permissions(_dir.path(), std::filesystem::perms{01777});
    EXPECT_EQ(log.open(), ENXIO);
    EXPECT_EQ(log.rotate(), 0);
    EXPECT_TRUE(std::filesystem::is_fifo(file("pipe")));
}

TEST_F(LgServiceFilePipeTest, TheReaderGetsTheText)
{
    for (const unsigned int mode : {0700U, 01777U})
    {
        std::filesystem::permissions(_dir.path(), std::filesystem::perms{mode});
        const Descriptor reader(openReader());
        LgServiceFile log(file("pipe"), {1, 0, 3});
        ASSERT_EQ(log.open(), 0);
        expectWritten(log, "text");
        EXPECT_EQ(readOnce(reader.get()), "text");
        EXPECT_EQ(log.getSize(), 0U);
        EXPECT_FALSE(log.isReplaced());
        EXPECT_FALSE(log.isRotationDue(100, std::time(nullptr) + 1000000));
        EXPECT_EQ(log.rotate(), 0);
        EXPECT_TRUE(log.isOpen());
        EXPECT_TRUE(log.sync());
    }
}

TEST_F(LgServiceFilePipeTest, AReaderThatEndsIsAnErrorAndTheNextOneGetsTheText)
{
    std::signal(SIGPIPE, SIG_IGN);
    LgServiceFile log(file("pipe"), {});
    {
        const Descriptor reader(openReader());
        ASSERT_EQ(log.open(), 0);
    }
    // The log is not its own reader.
    expectStopped(log.write("lost"), 0, EPIPE);
    const Descriptor next(openReader());
    expectWritten(log, "text");
    EXPECT_EQ(readOnce(next.get()), "text");
    std::signal(SIGPIPE, SIG_DFL);
}

TEST_F(LgServiceFilePipeTest, AFullPipeIsWaitedFor)
{
    const std::string text = support::noise(1000000);
    std::string received;
    {
        const Descriptor reader(openReader());
        LgServiceFile log(file("pipe"), {});
        ASSERT_EQ(log.open(), 0);
        fcntl(reader.get(), F_SETFL, 0);
        std::thread drain(
            [&]
            {
                for (std::string part = readOnce(reader.get()); !part.empty();
                     part = readOnce(reader.get()))
                    received += part;
            });
        expectWritten(log, text);
        log.close();
        drain.join();
    }
    EXPECT_EQ(received, text);
}

TEST_F(LgServiceFileDeviceTest, ATerminalIsWrittenToAndDoesNotBecomeTheProcesssOwn)
{
    const Descriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_GE(master.get(), 0);
    ASSERT_EQ(grantpt(master.get()) + unlockpt(master.get()), 0);
    const std::string name = linkTo(ptsname(master.get()));
    {
        LgServiceFile log(name, {1, 0, 3});
        ASSERT_EQ(log.open(), 0);
        expectWritten(log, "text\n");
        EXPECT_EQ(readOnce(master.get()), "text\r\n");
        EXPECT_EQ(log.getSize(), 0U);
        expectNotRotated(log);
    }
    if (support::forkProcess() == support::Side::CHILD)
    {
        // The first terminal that the leader of a new session opens would be its own.
        setsid();
        LgServiceFile log(name, {});
        const bool isOpen = log.open() == 0;
        const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC);
        _exit(isOpen && terminal < 0 ? 0 : 1);
    }
    EXPECT_EQ(support::awaitForkedChild(), 0);
}

TEST_F(LgServiceFileFaultTest, TheFileIsNoStandardStreamAndNotInherited)
{
    if (support::forkProcess() == support::Side::CHILD)
    {
        support::closeStandardStreams();
        const auto before = support::openDescriptors();
        LgServiceFile log(file("log"), {});
        const bool isOpen = log.open() == 0;
        const auto after = support::openDescriptors();
        bool isFine = isOpen && after.size() == before.size() + 1;
        for (const int number : {0, 1, 2})
            if (fcntl(number, F_GETFD) >= 0) isFine = false;
        for (const int number : after)
            if (std::find(before.begin(), before.end(), number) == before.end())
                isFine = isFine && !support::isInherited(number);
        _exit(isFine ? 0 : 1);
    }
    EXPECT_EQ(support::awaitForkedChild(), 0);
}

// The user of the tests may be one to whom modes do not apply.
class LgServiceFileModeTest : public LgServiceFileFaultTest
{
protected:
    void give(const std::string& name, unsigned int mode) const
    {
        std::filesystem::permissions(name, std::filesystem::perms{mode});
        const bool isGiven = support::userId() != 0 || support::giveToAnotherUser(name);
        EXPECT_TRUE(isGiven) << name;
    }
};

TEST_F(LgServiceFileModeTest, AFileThatCanOnlyBeWrittenIsWritten)
{
    writeFile(file("log"), "old");
    give(_dir.path(), 0700);
    give(file("log"), 0200);
    {
        const support::OrdinaryUser user;
        char byte = '#';
        LgServiceFile log(file("log"), {});
        EXPECT_EQ(log.open(), 0);
        expectWritten(log, "new");
        EXPECT_EQ(log.readAt(0, &byte, 1), -1);
        EXPECT_EQ(log.getSize(), 6U);
        EXPECT_FALSE(log.isReplaced());
    }
    give(file("log"), 0600);
    EXPECT_EQ(readFile(file("log")), "oldnew");
}

TEST_F(LgServiceFileModeTest, WhatMayNotBeWrittenIsAnError)
{
    writeFile(file("log"), "old");
    give(_dir.path(), 0700);
    give(file("log"), 0400);
    {
        const support::OrdinaryUser user;
        LgServiceFile log(file("log"), {});
        EXPECT_EQ(log.open(), EACCES);
    }
    give(_dir.path(), 0500);
    {
        const support::OrdinaryUser user;
        LgServiceFile log(file("new"), {});
        EXPECT_EQ(log.open(), EACCES);
    }
    give(_dir.path(), 0700);
    EXPECT_FALSE(std::filesystem::exists(file("new")));
}

TEST_F(LgServiceFileModeTest, WhereNoFileMayBeRenamedTheOldOneStaysInUse)
{
    writeFile(file("log"), "old");
    give(file("log"), 0600);
    give(_dir.path(), 0500);
    {
        const support::OrdinaryUser user;
        LgServiceFile log(file("log"), {1, -1, 3});
        EXPECT_EQ(log.open(), 0);
        EXPECT_TRUE(log.isRotationDue(1, 0));
        EXPECT_EQ(log.rotate(), EACCES);
        EXPECT_TRUE(log.isOpen());
        expectWritten(log, "new");
    }
    give(_dir.path(), 0700);
    EXPECT_EQ(readFile(file("log")), "oldnew");
}

TEST_F(LgServiceFileFaultTest, ARotationThatFailsAtAnyStepGoesOnWithTheOldFile)
{
    // Each of the four renames.
    for (int after = 0; after < 4; ++after)
    {
        for (const char* const name : {"log.1", "log.2", "log.3"}) writeFile(file(name), name);
        std::filesystem::remove(file("log"));
        LgServiceFile log(file("log"), {0, -1, 3});
        EXPECT_EQ(log.open(), 0);
        expectWritten(log, "old");
        {
            const Fault fault(Call::RENAMEAT2, EBUSY, 1, after);
            EXPECT_EQ(log.rotate(), EBUSY) << after;
            EXPECT_EQ(fault.failures(), 1);
        }
        EXPECT_TRUE(log.isOpen());
        EXPECT_FALSE(log.isReplaced());
        expectWritten(log, "new");
        // The next one does the rest.
        EXPECT_EQ(log.rotate(), 0);
        const support::Tree expected = {
            {"log.1", "oldnew"}, {"log.2", "log.1"}, {"log.3", "log.2"}};
        EXPECT_EQ(support::treeAt(_dir.path()), expected) << after;
    }
}

TEST_F(LgServiceFileFaultTest, AFileSystemThatCanNotExcludeReplacementIsRenamedOnAsWell)
{
    for (const int error : {EINVAL, ENOSYS})
    {
        for (const char* const name : {"log", "log.1"}) writeFile(file(name), name);
        std::filesystem::remove(file("log.2"));
        LgServiceFile log(file("log"), {});
        const Fault fault(Call::RENAMEAT2, error);
        EXPECT_EQ(log.rotate(), 0);
        EXPECT_EQ(fault.failures(), 2);
        const support::Tree expected = {{"log.1", "log"}, {"log.2", "log.1"}};
        EXPECT_EQ(support::treeAt(_dir.path()), expected);
        EXPECT_FALSE(Zu::LgServiceFilePlatform::rename(file("log.1"), file("log.2")));
        EXPECT_EQ(errno, EEXIST);
    }
    EXPECT_FALSE(Zu::LgServiceFilePlatform::rename(file("log.1"), file("log.2")));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(readFile(file("log.2")), "log.1");
}

TEST_F(LgServiceFileFaultTest, AFileIsReplacedOnlyIfTheSystemSaysSo)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    struct Row
    {
        int _error;
        bool _expected;
    };
    for (const auto& [error, expected] : {Row{ENOENT, true}, Row{ENOTDIR, true}, Row{ELOOP, true},
                                          Row{EACCES, false}, Row{EIO, false}, Row{ENOMEM, false}})
    {
        const Fault fault(Call::STAT, error);
        EXPECT_EQ(log.isReplaced(), expected) << error;
        EXPECT_EQ(fault.failures(), 1);
    }
    EXPECT_FALSE(log.isReplaced());
}

TEST_F(LgServiceFileFaultTest, WhatTheSystemDoesNotSayOfAFileIsNotGuessed)
{
    LgServiceFile log(file("log"), {1, -1, 3});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "text");
    const Fault fault(Call::FSTAT, EIO);
    EXPECT_EQ(log.getSize(), 0U);
    EXPECT_FALSE(log.isTruncated());
    EXPECT_FALSE(log.isRotationDue(1, 0));
}

TEST_F(LgServiceFileFaultTest, StoringIsTriedAgainIfInterrupted)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    {
        const Fault fault(Call::FSYNC, EINTR, 2);
        EXPECT_TRUE(log.sync());
        EXPECT_EQ(fault.failures(), 2);
    }
    const Fault fault(Call::FSYNC, EIO);
    EXPECT_FALSE(log.sync());
}

TEST_F(LgServiceFileFaultTest, WithoutADescriptorThereIsNoCopyToStore)
{
    LgServiceFile log(file("log"), {});
    ASSERT_EQ(log.open(), 0);
    expectWritten(log, "text");
    const stress::ResourceLimit limit(stress::Resource::DESCRIPTORS, 0);
    std::unique_ptr<LgServiceFile> copy;
    EXPECT_NE(log.copyToStore(copy), 0);
    EXPECT_EQ(copy, nullptr);
    EXPECT_TRUE(log.isUnstored());
}

// What is closed while the disk fails can't be stored any more.
TEST(LgServiceLogFault, AFileIsForcedToTheDiskBeforeItIsRotatedIfThatIsWanted)
{
    const support::RunningLogger logger;
    const support::TempDir dir;
    for (const bool isStored : {false, true})
    {
        Zu::LgServiceLog::Settings settings;
        settings._isStored = isStored;
        Zu::LgServiceLog::setSettings(settings);
        Zu::LgServiceLog log(dir.file("events.log"));
        const support::StreamCapture errors(std::cerr);
        const auto callsOf = [&log](auto close)
        {
            log << "text\n";
            const Fault fault(Call::FSYNC, EIO, 1);
            close();
            return fault.failures();
        };
        const int expected = isStored ? 1 : 0;
        EXPECT_EQ(callsOf([&] { log.reopen(); }), expected);
        EXPECT_EQ(log.takeStoringLost(), isStored);
        EXPECT_FALSE(log.takeStoringLost());
        EXPECT_EQ(callsOf([&] { log.setPath(dir.file("another.log")); }), expected);
        EXPECT_EQ(log.takeStoringLost(), isStored);
        const std::string report = "The log file \"" + dir.file("events.log") +
                                   "\" can't be forced to the disk: Input/output error\n";
        EXPECT_EQ(errors.text(), isStored ? report : "");
        // Without a fault: once for each, and nothing without something to store.
        int calls = 0;
        const support::Before count(Call::FSYNC, [&calls] { ++calls; });
        log << "text\n";
        log.reopen();
        log.reopen();
        EXPECT_EQ(calls, expected);
        EXPECT_FALSE(log.takeStoringLost());
    }
    Zu::LgServiceLog::setSettings({});
}

TEST_F(LgServiceFileFaultTest, ALinkCanBeRetargetedAndIsItselfRenamed)
{
    std::filesystem::create_symlink("first", file("log"));
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "1");
    EXPECT_FALSE(log.isReplaced());
    std::filesystem::remove(file("log"));
    std::filesystem::create_symlink("second", file("log"));
    // It leads nowhere.
    EXPECT_TRUE(log.isReplaced());
    log.close();
    EXPECT_EQ(log.open(), 0);
    EXPECT_FALSE(log.isReplaced());
    expectWritten(log, "2");
    EXPECT_EQ(log.rotate(), 0);
    EXPECT_EQ(log.open(), 0);
    const support::Tree expected = {
        {"first", "1"}, {"log", ""}, {"log.1", "<link> second"}, {"second", "2"}};
    EXPECT_EQ(support::treeAt(_dir.path()), expected);
    // A link that leads nowhere takes its number, too.
    std::filesystem::remove(file("second"));
    expectWritten(log, "3");
    EXPECT_EQ(log.rotate(), 0);
    EXPECT_EQ(log.open(), 0);
    EXPECT_EQ(readFile(file("log.1")), "3");
    EXPECT_TRUE(std::filesystem::is_symlink(std::filesystem::symlink_status(file("log.2"))));
    // A link to itself.
    std::filesystem::remove(file("log"));
    std::filesystem::create_symlink("log", file("log"));
    EXPECT_TRUE(log.isReplaced());
}

// A catalogue of the runtime in which one text is translated: the numbers say where lengths and
// places of the texts and of their translations are, and these themselves. The first text is empty;
// its translation says how the others are encoded.
std::string catalogueOf(const std::string& text, const std::string& translation)
{
    constexpr std::uint32_t MAGIC = 0x950412de;
    constexpr std::uint32_t TEXTS = 7 * 4;
    constexpr std::uint32_t TRANSLATIONS = TEXTS + 4 * 4;
    constexpr std::uint32_t BEHIND = TRANSLATIONS + 4 * 4;
    std::vector<std::uint32_t> numbers = {MAGIC, 0, 2, TEXTS, TRANSLATIONS, 0, BEHIND};
    std::string all;
    for (const std::string& entry :
         {std::string(), text, std::string("Content-Type: text/plain; charset=UTF-8\n"),
          translation})
    {
        numbers.push_back(static_cast<std::uint32_t>(entry.size()));
        numbers.push_back(BEHIND + static_cast<std::uint32_t>(all.size()));
        all += entry + '\0';
    }
    return std::string(reinterpret_cast<const char*>(numbers.data()), BEHIND) + all;
}

TEST_F(LgServiceFileFaultTest, ErrorsHaveTheSameWordsWhateverTheLanguage)
{
    const support::CommaNumerals locale;
    if (!locale.isSet()) GTEST_SKIP() << "There is no other locale here, nor a way to make one.";
    const support::VariableGuard language("LANGUAGE");
    language.set("");
    const std::string messages = file(support::translateRuntime(_dir.path())) + "/LC_MESSAGES";
    std::filesystem::create_directories(messages);
    writeFile(messages + "/libc.mo", catalogueOf("No space left on device", "Nichts mehr frei"));
    EXPECT_STREQ(std::strerror(ENOSPC), "Nichts mehr frei");
    EXPECT_EQ(LgServiceFile::errorText(ENOSPC), "No space left on device");
    support::translateRuntime("");
}

TEST(LgServiceFileZone, TheLocalOffsetIsTheOneAtThatTime)
{
    const support::VariableGuard zone("TZ");
    const auto offsetAt = [](std::time_t time)
    {
        // Takes notice of the zone.
        std::localtime(&time);
        return LgServiceFile::getLocalOffset(time);
    };
    zone.set("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(offsetAt(1711846799), 3600);
    EXPECT_EQ(offsetAt(1711846800), 7200);
    EXPECT_EQ(offsetAt(1729990799), 7200);
    EXPECT_EQ(offsetAt(1729990800), 3600);
    zone.set("NST3:30");
    EXPECT_EQ(offsetAt(1729990800), -12600);
    zone.set("UTC0");
    EXPECT_EQ(offsetAt(0), 0);
}

} // namespace
