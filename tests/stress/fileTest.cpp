// Files that disappear, disks that fill up, and descriptors that run out.

#include "app/lgService.h"
#include "base/lgReader.h"
#include "stress/roundLogger.h"
#include "stress/scenario.h"
#include "stress/streamBetween.h"
#include "support/childProcess.h"
#include "support/logTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <system_error>
#include <thread>

namespace
{

using stress::Account;
using stress::accountOf;
using stress::FileAccount;
using stress::Producer;
using stress::RoundLogger;
using stress::Scenario;
using support::ProgramResult;
using Zu::LgReader;
using Zu::LgService;

constexpr unsigned THREADS = 3;
constexpr unsigned BURST = 100;
constexpr unsigned EVENTS = 20 * BURST;

// Removes the log directory, as far as the system does that while files in it are open. Where it
// does, by one step: the reader must not find the directory without the file, in which it would
// make another one.
void removeDirectory()
{
    std::string directory = RoundLogger::dir();
    std::error_code error;
    if (!support::onWindows)
    {
        directory += "-removed";
        std::filesystem::rename(RoundLogger::dir(), directory, error);
    }
    std::filesystem::remove_all(directory, error);
}

// On Linux the file remains without a name, on Windows the directory remains as long as the file is
// open. Either way no line of it is missing, and the next logger has a directory again.
TEST(StressFiles, TheDirectoryIsRemoved)
{
    Scenario scenario("the log directory removed");
    while (scenario.goesOn())
    {
        RoundLogger logger;
        const std::string path = RoundLogger::file();
        std::ifstream before;
        Account account;
        {
            const LgService service;
            before.open(path, std::ios::binary);
            Producer producer(0);
            producer.logInBursts(EVENTS, BURST);
            // The reader is at work meanwhile.
            producer.log(BURST);
            removeDirectory();
            producer.logInBursts(EVENTS, BURST);
            account = producer.account();
            account._lost = service.getLostCount();
        }
        EXPECT_EQ(std::filesystem::exists(path), support::onWindows);
        logger.stop();
        FileAccount file = stress::read(before);
        before.close();
        scenario.add(account, file);
        EXPECT_EQ(account._attempted, 2 * EVENTS + BURST);
        EXPECT_EQ(account._lost, 0U);
        EXPECT_EQ(file._written, account._accepted);
        EXPECT_EQ(file._torn, 0U);
        EXPECT_EQ(file._stopBanners, 1U);

        Zu::LgLog::init();
        {
            const stress::Group group;
            const LgService service;
            Producer producer(1);
            producer.logInBursts(BURST, BURST);
            account = producer.account();
            account._lost = service.getLostCount();
        }
        Zu::LgLog::destroy();
        file = stress::read(path);
        // On Windows the file is still there, and goes on.
        file._written -= support::onWindows ? 2 * EVENTS + BURST : 0U;
        EXPECT_EQ(file._written, BURST);
        scenario.add(account, file);
    }
}

// The file ends with the line that found no room. Nobody waits for it, and the next logger starts
// normally.
TEST(StressFiles, TheDiskIsFullForATime)
{
    constexpr std::streamsize ROOM = 100000;
    Scenario scenario("a disk that is full for a time");
    while (scenario.goesOn())
    {
        RoundLogger logger;
        const std::uint64_t before = LgReader::getUnwrittenCount();
        Account account;
        {
            stress::SmallDisk disk(Zu::LgTypes::Warning, ROOM);
            const LgService service;
            Producer producer(0);
            while (!disk.wasFull()) producer.logInBursts(BURST, BURST);
            producer.logInBursts(EVENTS, BURST);
            disk.makeRoom(ROOM);
            producer.logInBursts(EVENTS, BURST);
            account = producer.account();
            account._lost = service.getLostCount();
        }
        account._unwritten = LgReader::getUnwrittenCount() - before;
        const FileAccount file = logger.read();
        scenario.add(account, file);
        EXPECT_EQ(account._lost, 0U);
        EXPECT_GT(file._written, 0U);
        EXPECT_GE(account._unwritten, 2 * EVENTS);
        EXPECT_EQ(file._written + account._unwritten, account._accepted);
        EXPECT_LE(file._torn, 1U);

        RoundLogger next;
        {
            const LgService service;
            Producer(0).logInBursts(BURST, BURST);
        }
        EXPECT_EQ(next.read()._written, BURST);
    }
}

constexpr bool checksTypes = support::underAddressSanitizer;

// Runs stressProgram on files of its own; it must succeed.
ProgramResult runAlone(const std::string& mode, const support::TempDir& dir, const std::string& log,
                       const support::Environment& more = {})
{
    support::Environment environment{{"STRESS_DIR", dir.path()},
                                     {"STRESS_LOCK", stress::nameOfLock(dir)}};
    environment["B7Q_TEST_DIR"] = dir.file("logs");
    if (!log.empty())
    {
        environment["ZU_LOG_WARNING"] = log;
        environment["ZU_LOG_INFORMATIONAL"] = log;
    }
    for (const auto& [name, value] : more) environment[name] = value;
    return support::runProgram("stressProgram", {mode, "0"}, support::logEnvironment(environment));
}

TEST(StressFiles, AFileMayNotGetLongerForATime)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no limit to the size of a file";
    Scenario scenario("a file at its limit for a time");
    while (scenario.goesOn())
    {
        const support::TempDir dir;
        const ProgramResult result = runAlone("fillDisk", dir, dir.file("limited.log"));
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(support::linesOf(result.err).size(), 3U) << result.err;
        // The file with the queues can't grow either.
        EXPECT_EQ(support::countOf(result.err, "not kept in case the process is killed"), 1U);
        EXPECT_EQ(support::countOf(result.err, "can't be written, and is tried again: "), 1U);
        EXPECT_EQ(support::countOf(result.err, "is written again."), 1U);
        const Account account = accountOf(result);
        const FileAccount file = stress::read(dir.file("limited.log"));
        scenario.add(account, file);
        EXPECT_EQ(account._attempted, 2 * THREADS * EVENTS);
        EXPECT_EQ(account._lost, 0U);
        EXPECT_GT(file._written, 0U);
        EXPECT_GT(file.writtenFrom(THREADS, THREADS), 0U);
        EXPECT_EQ(file._written + account._unwritten, account._accepted);
        EXPECT_LE(file._torn, 1U);
        EXPECT_EQ(file._startBanners, 1U);
    }
}

// One line for each log that can't be written, and for each that is written again, and one at the
// end; and one if the service could not make its control file, either.
void expectReports(const ProgramResult& result, std::size_t logs, std::size_t working = 0)
{
    const std::size_t control =
        support::countOf(result.err, "The log service can't be asked by other processes: ");
    EXPECT_LE(control, 1U);
    EXPECT_EQ(support::linesOf(result.err).size(), logs + working + 1 + control) << result.err;
    EXPECT_EQ(support::countOf(result.err, "is written again."), working);
    EXPECT_EQ(support::countOf(result.err, "can't be written, and is tried again: "), logs);
    EXPECT_EQ(support::countOf(result.err, "ends with events that it could not write."), 1U);
}

TEST(StressFiles, ADiskThatIsFullFromTheStart)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no device that is always full";
    Scenario scenario("a disk that is full from the start");
    while (scenario.goesOn())
    {
        const support::TempDir dir;
        const ProgramResult result = runAlone("log", dir, "/dev/full");
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.out.rfind("account ", 0), 0U) << result.out;
        expectReports(result, 1);
        const Account account = accountOf(result);
        scenario.add(account, FileAccount());
        EXPECT_EQ(account._attempted, THREADS * EVENTS);
        EXPECT_EQ(account._lost, 0U);
        EXPECT_EQ(account._unwritten, 0U);
        // What the device did not take is kept for a file that does.
        const std::string later = dir.file("later.log");
        const ProgramResult next = runAlone("recover", dir, later);
        EXPECT_EQ(next.err, "");
        EXPECT_EQ(stress::read(later)._written, account._accepted);
    }
}

// The rest of each line that begins with a word.
std::vector<std::string> textsBehind(const std::string& word, const ProgramResult& result)
{
    std::vector<std::string> numbers;
    for (const std::string& line : support::linesOf(result.out))
        if (line.rfind(word + " ", 0) == 0) numbers.push_back(line.substr(word.size() + 1));
    return numbers;
}

TEST(StressFiles, DescriptorsRunOut)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no limit to the handles of a process";
    if (checksTypes)
        GTEST_SKIP() << "the sanitizer opens descriptors of its own to check an object's type";
    Scenario scenario("no descriptor left for a time");
    const std::string all = std::to_string(THREADS * EVENTS);
    while (scenario.goesOn())
    {
        const support::TempDir dir;
        const ProgramResult result = runAlone("descriptors", dir, "");
        EXPECT_EQ(result.exitCode, 0);
        // Of the two logs of the second logger; nothing waits for one of them.
        expectReports(result, 2, 1);
        // Before, while none is left, and after: then what waited is written as well.
        const std::string account = all + " " + all + " 0 0";
        const std::string both = std::to_string(2 * THREADS * EVENTS);
        EXPECT_EQ(textsBehind("account", result),
                  (std::vector<std::string>{account, account, account}));
        EXPECT_EQ(textsBehind("written", result), (std::vector<std::string>{all, "0", both}));
        EXPECT_EQ(textsBehind("refused", result), (std::vector<std::string>{"100", "0"}));
        EXPECT_EQ(textsBehind("left open", result), std::vector<std::string>{"0"});
        FileAccount file;
        file._written = 3 * THREADS * EVENTS;
        scenario.add({3 * THREADS * EVENTS, 3 * THREADS * EVENTS, 0, 0}, file);
    }
    scenario.note("100 locks refused in each round");
}

TEST(StressFiles, AProcessStartsWithoutDescriptors)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no limit to the handles of a process";
    if (checksTypes)
        GTEST_SKIP() << "the sanitizer opens descriptors of its own to check an object's type";
    Scenario scenario("a process that can open nothing");
    while (scenario.goesOn())
    {
        const support::TempDir dir;
        const std::string log = dir.file("never.log");
        const ProgramResult result = runAlone("logWithoutDescriptors", dir, log);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(support::countOf(result.err, "Events are not kept in case the process is killed"),
                  1U);
        const Account account = accountOf(result);
        scenario.add(account, FileAccount());
        EXPECT_EQ(account._attempted, THREADS * EVENTS);
        EXPECT_EQ(account._lost, 0U);
        EXPECT_EQ(account._unwritten, account._accepted);
        EXPECT_FALSE(std::filesystem::exists(log));
        // The lock is not optional: without it the process does not start.
        const ProgramResult refused =
            runAlone("logWithoutDescriptors", dir, log,
                     {{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", stress::nameOfLock(dir)}});
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_EQ(refused.out, "raised EMFILE\n");
    }
}

} // namespace
