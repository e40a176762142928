// Log services that find no room for their events: in a file system that is full, as the shared
// memory of a container can be, and with little address space. Nobody is killed for that.

#include "app/lgMapFile.h"
#include "app/lgServiceMap.h"

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"
#include "stress/hardEnd.h"
#include "support/childProcess.h"
#include "support/platform.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"
#include "support/victimLine.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <map>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace
{

namespace fs = std::filesystem;

using support::ProgramResult;
using support::TempDir;

constexpr int THREADS = 40;
// A queue has room for these, even on the heap and before it has grown.
constexpr int EVENTS = 300;

const std::string NO_FILE = "Events are not kept in case the process is killed: ";
const std::string NO_QUEUE =
    "The events of some threads are not kept in case the process is killed: ";
const std::string NO_GROWTH = "Some events are not kept in case the process is killed: ";

void write(const char* path, const std::string& text)
{
    std::ofstream(path) << text;
}

// Gives this process a view of its own of the file systems; with it the right to mount some, if
// the user has none. False, with errno, if the system refuses.
bool enterOwnNamespace()
{
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWNS) != 0)
    {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        write("/proc/self/setgroups", "deny");
        write("/proc/self/uid_map", user + " " + user + " 1");
        write("/proc/self/gid_map", group + " " + group + " 1");
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool mountTiny(const std::string& directory, int kibibytes)
{
    const std::string options = "mode=0700,size=" + std::to_string(kibibytes) + "k";
    return mount("none", directory.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

// A group of processes that may use so much memory together. Of those that the kernel knows in
// either way, the one that is there.
class MemoryGroup
{
public:
    explicit MemoryGroup(int mebibytes)
    {
        const std::string name = "/zuMemory" + std::to_string(getpid());
        struct Form
        {
            const char* _root;
            const char* _limit;
            const char* _swap;
        };
        for (const auto& [root, limit, swap] :
             {Form{"/sys/fs/cgroup/memory", "limit_in_bytes", "swappiness"},
              Form{"/sys/fs/cgroup", "max", "swap.max"}})
        {
            const std::string directory = root + name;
            std::error_code error;
            if (!fs::create_directory(directory, error)) continue;
            _directory = directory;
            // Memory that is swapped out does not count.
            write((directory + "/memory." + swap).c_str(), "0");
            std::ofstream out(directory + "/memory." + limit);
            _isThere = (out << mebibytes * 1024 * 1024 << std::flush).good();
            if (_isThere) return;
            fs::remove(_directory, error);
        }
    }
    // The kernel keeps it for as long as a process of it is not quite gone.
    ~MemoryGroup()
    {
        for (int i = 0; i < 1000 && rmdir(_directory.c_str()) != 0 && errno == EBUSY; ++i)
            usleep(1000);
    }
    MemoryGroup(const MemoryGroup&) = delete;
    MemoryGroup& operator=(const MemoryGroup&) = delete;

    bool isThere() const
    {
        return _isThere;
    }

    std::string processes() const
    {
        return _directory + "/cgroup.procs";
    }

private:
    std::string _directory;
    bool _isThere = false;
};

class LgServiceRoom : public testing::Test
{
protected:
    // Runs the test in a child with a file system of this size in a directory.
    template <class Body> void runWithin(const std::string& directory, int kibibytes, Body body)
    {
        if (support::forkProcess() == support::Side::CHILD)
        {
            if (!enterOwnNamespace() || !mountTiny(directory, kibibytes))
            {
                write(_dir.file("refused").c_str(), std::strerror(errno));
                _exit(REFUSED);
            }
            body();
            std::cout.flush();
            std::fflush(nullptr);
            _exit(HasFailure() ? 1 : 0);
        }
        const int result = support::awaitForkedChild();
        if (result == REFUSED)
            GTEST_SKIP() << "The system does not let this process mount a file system: "
                         << std::ifstream(_dir.file("refused")).rdbuf();
        if (result == NOT_IN_GROUP)
            GTEST_SKIP() << "The system lets no process into a group with a limit of memory.";
        EXPECT_EQ(result, 0) << kibibytes << " KiB; see above";
    }

    ProgramResult run(const std::string& way, int threads, int events) const
    {
        support::Environment environment{{"B7Q_TEST_DIR", _logs.path()}};
        environment["ZU_LOG_SERVICE_MAPPING_DIRECTORY"] = std::nullopt;
        if (!_isShared) environment["ZU_LOG_SERVICE_MAPPING_DIRECTORY"] = _maps.path();
        if (!_group.empty()) environment["VICTIM_GROUP"] = _group;
        return support::runProgram("crowdVictimLinux",
                                   {way, std::to_string(threads), std::to_string(events)},
                                   environment);
    }

    // A service without events, which writes what the process before has left.
    ProgramResult recover() const
    {
        return run("main", 0, 0);
    }

    // How often each event of each thread is in the log.
    std::map<int, std::vector<int>> readLog() const
    {
        std::map<int, std::vector<int>> counts;
        std::ifstream file(_logs.file("events.log"), std::ios::binary);
        for (std::string line; std::getline(file, line);)
        {
            const auto event = support::victimEventOf(line);
            if (!event) continue;
            std::vector<int>& ofThread = counts[event->_thread];
            const auto number = static_cast<std::size_t>(event->_number);
            ofThread.resize(std::max(ofThread.size(), number + 1));
            ++ofThread[number];
        }
        return counts;
    }

    std::size_t countLost() const
    {
        std::ifstream file(_logs.file("events.log"), std::ios::binary);
        std::size_t sum = 0;
        for (std::string line; std::getline(file, line);)
        {
            const std::string words = "Event overflow [";
            const std::size_t place = line.find(words);
            if (place != std::string::npos) sum += std::stoul(line.substr(place + words.size()));
        }
        return sum;
    }

    // Each event once.
    void checkAll(int threads, int events) const
    {
        const std::map<int, std::vector<int>> counts = readLog();
        EXPECT_EQ(counts.size(), static_cast<std::size_t>(threads));
        for (const auto& [thread, ofThread] : counts)
            EXPECT_EQ(ofThread, std::vector<int>(static_cast<std::size_t>(events), 1)) << thread;
    }

    void forgetLog() const
    {
        fs::remove(_logs.file("events.log"));
    }

    // One line, which begins so and gives the system's reason; or none.
    static void checkErrors(const ProgramResult& result, const std::string& line)
    {
        EXPECT_EQ(result.err.substr(0, line.size()), line);
        EXPECT_EQ(support::linesOf(result.err).size(), line.empty() ? 0U : 1U) << result.err;
        const bool hasReason = result.err.find("No space left on device") != std::string::npos;
        EXPECT_EQ(hasReason, !line.empty()) << result.err;
        EXPECT_EQ(result.exitCode, 0);
    }

    static constexpr int REFUSED = 77;
    // As its victim reports it.
    static constexpr int NOT_IN_GROUP = 3;

    TempDir _dir;
    TempDir _logs;
    TempDir _maps;
    bool _isShared = false;
    // The file that a process writes its number to, to be in a group.
    std::string _group;
};

// The first part of a map takes some 90 KiB, each queue 28.
TEST_F(LgServiceRoom, ThreadsThatFindNoRoomLogFromTheHeap)
{
    struct Row
    {
        int _kibibytes;
        std::string _line;
    };
    for (const Row& row : {Row{8, NO_FILE}, Row{64, NO_FILE}, Row{116, NO_QUEUE},
                           Row{200, NO_QUEUE}, Row{555, NO_QUEUE}, Row{8192, ""}})
    {
        runWithin(_maps.path(), row._kibibytes,
                  [&]
                  {
                      const ProgramResult result = run("main", THREADS, EVENTS);
                      checkErrors(result, row._line);
                      checkAll(THREADS, EVENTS);
                      EXPECT_TRUE(fs::is_empty(_maps.path()));
                  });
        if (IsSkipped()) return;
        forgetLog();
    }
}

TEST_F(LgServiceRoom, AQueueThatCantGrowGoesOnInMemoryOfTheProcess)
{
    runWithin(_maps.path(), 160,
              [&]
              {
                  constexpr int MANY = 3000;
                  checkErrors(run("main", 1, MANY), NO_GROWTH);
                  checkAll(1, MANY);
                  EXPECT_TRUE(fs::is_empty(_maps.path()));
              });
}

// Some grow, some can't, and some are on the heap: each event is written or counted.
TEST_F(LgServiceRoom, QueuesThatTakeAllRoomFromEachOtherLoseNothingUncounted)
{
    runWithin(_maps.path(), 600,
              [&]
              {
                  constexpr int MANY = 3000;
                  const ProgramResult result = run("main", THREADS, MANY);
                  EXPECT_EQ(result.exitCode, 0);
                  EXPECT_EQ(support::linesOf(result.err).size(), 1U) << result.err;
                  std::size_t written = 0;
                  for (const auto& [thread, ofThread] : readLog())
                      for (const int count : ofThread)
                      {
                          EXPECT_LE(count, 1) << thread;
                          written += static_cast<std::size_t>(count);
                      }
                  EXPECT_EQ(written + countLost(), std::size_t{THREADS} * MANY);
                  EXPECT_TRUE(fs::is_empty(_maps.path()));
              });
}

// Without an option the events wait in the machine's shared memory, of which a container may have
// little.
TEST_F(LgServiceRoom, SharedMemoryMayBeTiny)
{
    _isShared = true;
    runWithin("/dev/shm", 400,
              [&]
              {
                  checkErrors(run("main", THREADS, EVENTS), NO_QUEUE);
                  checkAll(THREADS, EVENTS);
                  EXPECT_TRUE(fs::is_empty("/dev/shm"));
              });
}

TEST_F(LgServiceRoom, RoomThatIsThereAgainIsUsedByTheNextProcess)
{
    runWithin(_maps.path(), 4096,
              [&]
              {
                  const std::string ballast = _maps.file("ballast");
                  write(ballast.c_str(), std::string(3900 * 1024, 'b'));
                  checkErrors(run("main", THREADS, EVENTS), NO_QUEUE);
                  checkAll(THREADS, EVENTS);
                  forgetLog();
                  fs::remove(ballast);
                  checkErrors(run("main", THREADS, EVENTS), "");
                  checkAll(THREADS, EVENTS);
              });
}

// What had room is recovered; of the others there is what was written before the kill.
TEST_F(LgServiceRoom, AKillLosesOnlyWhatHadNoRoom)
{
    runWithin(_maps.path(), 555,
              [&]
              {
                  const ProgramResult killed = run("kill", THREADS, EVENTS);
                  EXPECT_TRUE(killed.aborted);
                  EXPECT_EQ(killed.err.substr(0, NO_QUEUE.size()), NO_QUEUE);
                  // The map of the dead makes room for one of the next process.
                  checkErrors(recover(), "");
                  EXPECT_TRUE(fs::is_empty(_maps.path()));
                  int whole = 0;
                  for (const auto& [thread, ofThread] : readLog())
                  {
                      EXPECT_EQ(ofThread, std::vector<int>(ofThread.size(), 1)) << thread;
                      if (ofThread.size() == EVENTS) ++whole;
                  }
                  // 555 KiB are room for some 16 queues.
                  EXPECT_GE(whole, 12);
              });
}

// A line that the kill has cut may stay a fragment, if its event had no room in the map.
TEST_F(LgServiceRoom, AKillWhileQueuesCantGrowLeavesNothingTwice)
{
    runWithin(_maps.path(), 300,
              [&]
              {
                  run("kill", 3, 3000);
                  const ProgramResult result = recover();
                  EXPECT_EQ(result.exitCode, 0);
                  EXPECT_TRUE(fs::is_empty(_maps.path()));
                  for (const auto& [thread, ofThread] : readLog())
                      EXPECT_EQ(ofThread, std::vector<int>(ofThread.size(), 1)) << thread;
              });
}

// Beyond a limit of memory, to which shared memory counts, the system kills like anybody else.
TEST_F(LgServiceRoom, AKillForTheLimitOfMemoryLosesNothing)
{
    if (support::underSanitizer) GTEST_SKIP() << "A sanitizer needs more memory.";
    const MemoryGroup group(24);
    if (!group.isThere()) GTEST_SKIP() << "The system lets this process limit no memory.";
    runWithin(_maps.path(), 128 * 1024,
              [&]
              {
                  _group = group.processes();
                  const ProgramResult killed = run("main", 200, 4000);
                  if (killed.exitCode == NOT_IN_GROUP) _exit(NOT_IN_GROUP);
                  EXPECT_EQ(killed.signal, SIGKILL) << killed.err;
                  _group.clear();
                  checkErrors(recover(), "");
                  EXPECT_TRUE(fs::is_empty(_maps.path()));
                  // No queue was full, so each thread has its events from the first one on.
                  std::size_t written = 0;
                  for (const auto& [thread, ofThread] : readLog())
                  {
                      EXPECT_EQ(ofThread, std::vector<int>(ofThread.size(), 1)) << thread;
                      written += ofThread.size();
                  }
                  EXPECT_GE(written, 20000U);
                  EXPECT_EQ(countLost(), 0U);
              });
}

// The address space of the process is used up between the start of the service and a thread's.
TEST_F(LgServiceRoom, AQueueThatCantBeMappedIsOnTheHeap)
{
    if (support::underSanitizer) GTEST_SKIP() << "A sanitizer needs address space itself.";
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    Zu::LgServiceMap::Settings settings;
    settings._mapDirectory = _maps.path() + "/";
    settings._logDirectory = "/logs/here";
    // More than the heap gets at a time.
    settings._characters = 1U << 24;
    Zu::LgServiceMap map;
    map.begin(settings);
    ASSERT_TRUE(map.isOpen());
    const support::StreamCapture errors(std::cerr);
    constexpr std::uint64_t LITTLE = 1U << 22;
    Zu::LgQueue* queue = nullptr;
    {
        const stress::ResourceLimit limit(stress::Resource::ADDRESS_SPACE,
                                          stress::addressSpace() + LITTLE);
        queue = map.makeQueue(1);
    }
    EXPECT_EQ(errors.text().substr(0, NO_QUEUE.size()), NO_QUEUE);
    EXPECT_NE(errors.text().find("Cannot allocate memory"), std::string::npos) << errors.text();
    EXPECT_EQ(queue->getHome(), nullptr);
    Zu::LgQueue::end(queue);
    // Later there is room again.
    Zu::LgQueue* const later = map.makeQueue(2);
    EXPECT_NE(later->getHome(), nullptr);
    Zu::LgQueue::end(later);
}

} // namespace
