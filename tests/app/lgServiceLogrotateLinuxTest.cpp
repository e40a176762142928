// The log files of a service while the program logrotate puts them away, in a separate program.

#include "app/lgService.h"

#include "base/lgEvent.h"
#include "base/lgMajorGroup.h"
#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/tempDir.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Rotation);

namespace
{

using support::readFile;
using support::writeFile;

constexpr int ROTATIONS = 4;

// Only bounds a hang.
constexpr std::chrono::minutes PATIENCE(10);

// Where the system has it; empty if it has none. The path of an ordinary user may lack its
// directory.
std::string findLogrotate()
{
    for (const char* const path : {"/usr/sbin/logrotate", "/usr/bin/logrotate"})
        if (std::filesystem::exists(path)) return path;
    return {};
}

// Logs numbered lines from a thread of its own, a few at a time, so that there are many batches.
class Numbers
{
public:
    explicit Numbers(const Zu::LgService& service) : _service(service) {}
    Numbers(const Numbers&) = delete;
    Numbers& operator=(const Numbers&) = delete;

    ~Numbers()
    {
        stop();
    }

    void start()
    {
        _isOver = false;
        _thread = std::thread([this] { log(); });
    }

    // Afterwards all lines are in a file.
    void stop()
    {
        _isOver = true;
        if (_thread.joinable()) _thread.join();
    }

    int getCount() const
    {
        return _count;
    }

    // Waits until so many more are in a file.
    void await(int more) const
    {
        const int end = _count + more;
        for (int count = _count; count < end; count = _count) _count.wait(count);
    }

private:
    void log()
    {
        while (!_isOver)
        {
            const int end = _count + 3;
            for (int i = _count; i < end; ++i) ZU_LOG_WARNING(Rotation, "n" << i << " end");
            if (!_service.flush(PATIENCE)) ADD_FAILURE() << "not written in time";
            _count = end;
            _count.notify_all();
        }
    }

    const Zu::LgService& _service;
    std::thread _thread;
    std::atomic<bool> _isOver{false};
    std::atomic<int> _count{0};
};

class LgServiceLogrotateTest : public testing::Test
{
protected:
    LgServiceLogrotateTest()
    {
        // It refuses directories that others can write to, and the mask may allow that.
        std::filesystem::create_directory(logs());
        for (const std::string& directory : {_dir.path(), logs()})
            std::filesystem::permissions(directory, std::filesystem::perms{0700});
        ZU_START_LOG_GROUP("Rotation", Rotation);
    }

    ~LgServiceLogrotateTest() override
    {
        ZU_STOP_LOG_GROUP(Rotation);
    }

    void SetUp() override
    {
        if (_logrotate.empty()) GTEST_SKIP() << "There is no program logrotate here.";
    }

    std::string logs() const
    {
        return _dir.file("logs");
    }

    Zu::LgServiceOptions options() const
    {
        Zu::LgServiceOptions options;
        options._directory = logs();
        options._mappingDirectory = _dir.path();
        return options;
    }

    // What logrotate does with the file; `lines` is the part that differs.
    void configure(const std::string& lines) const
    {
        const std::string file = _dir.file("conf");
        writeFile(file, "\"" + logs() + "/events.log\" {\n    rotate 100\n" + lines + "}\n");
        std::filesystem::permissions(file, std::filesystem::perms{0644});
    }

    // Returns what it reported.
    std::string rotate() const
    {
        support::ProgramResult result;
        support::runToFiles(_logrotate, {"-f", "-s", _dir.file("state"), _dir.file("conf")}, {},
                            _dir.file("out"), _dir.file("err"), result);
        std::string report = readFile(_dir.file("err"));
        if (report.empty())
        {
            EXPECT_EQ(result.exitCode, 0);
        }
        return report;
    }

    // Rotates again and again while there are lines all the time.
    void rotateWhileLogging(Numbers& numbers)
    {
        numbers.start();
        for (int i = 0; i < ROTATIONS; ++i)
        {
            numbers.await(15);
            const std::string report = rotate();
            if (!report.empty()) keepBackup(report);
            if (IsSkipped() || HasFailure()) return;
        }
        numbers.await(15);
        numbers.stop();
    }

    // With `create`, the service may have made the new file first. Then logrotate puts that away,
    // too, by a name that it has once an hour; it replaces a file of that name.
    void keepBackup(const std::string& report)
    {
        const std::string path = logs() + "/events.log";
        const std::string words = "destination " + path + " already exists, renaming to ";
        const std::size_t begin = report.find(words);
        ASSERT_NE(begin, std::string::npos) << report;
        const std::size_t name = begin + words.size();
        if (report.find(words, name) != std::string::npos)
            GTEST_SKIP() << "logrotate has replaced a file that it had just put away.";
        std::filesystem::rename(report.substr(name, report.find('\n', name) - name),
                                path + ".kept" + std::to_string(++_backups));
    }

    // Each number is there once, and each file is dated.
    void checkAll(const Numbers& numbers) const
    {
        std::vector<int> counts(static_cast<std::size_t>(numbers.getCount()));
        std::size_t files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(logs()))
        {
            if (entry.path().filename().string().rfind("events.log", 0) != 0) continue;
            ++files;
            checkFile(entry.path().string(), counts);
        }
        EXPECT_EQ(files, static_cast<std::size_t>(ROTATIONS + 1 + _backups));
        for (std::size_t i = 0; i < counts.size(); ++i) ASSERT_EQ(counts[i], 1) << i;
    }

    // Counts the numbers of a file, which are in order.
    static void checkFile(const std::string& path, std::vector<int>& counts)
    {
        const std::vector<std::string> lines = support::linesOf(readFile(path));
        ASSERT_FALSE(lines.empty()) << path;
        EXPECT_EQ(lines[0], "===== Message Logger Startup =====") << path;
        bool isDated = false;
        int last = -1;
        for (const std::string& line : lines)
        {
            if (line.rfind("===== Clock Origin: ", 0) == 0) isDated = true;
            if (line.empty() || line.rfind("=====", 0) == 0) continue;
            ASSERT_TRUE(isDated) << path << ": " << line;
            const int number = numberOf(line);
            ASSERT_GT(number, last) << path << ": " << line;
            ++counts.at(static_cast<std::size_t>(number));
            last = number;
        }
        EXPECT_GE(last, 0) << path << " has no lines";
    }

    // -1 if the line is not whole.
    static int numberOf(const std::string& line)
    {
        const std::string words = ": Rotation n";
        const std::size_t begin = line.find(words);
        if (begin == std::string::npos) return -1;
        const int number = std::atoi(line.c_str() + begin + words.size());
        return line.substr(begin) == words + std::to_string(number) + " end" ? number : -1;
    }

    support::TempDir _dir;
    const std::string _logrotate = findLogrotate();
    support::RunningLogger _logger;
    int _backups = 0;
};

TEST_F(LgServiceLogrotateTest, ANewFileThatTheServiceMakesItself)
{
    configure("    nocreate\n    missingok\n");
    const Zu::LgService service(options());
    Numbers numbers(service);
    rotateWhileLogging(numbers);
    checkAll(numbers);
    EXPECT_EQ(_backups, 0);
    EXPECT_EQ(service.getLostCount(), 0U);
}

TEST_F(LgServiceLogrotateTest, ANewFileThatIsNoticedByItsName)
{
    configure("    create\n");
    const Zu::LgService service(options());
    Numbers numbers(service);
    rotateWhileLogging(numbers);
    if (IsSkipped()) return;
    checkAll(numbers);
    EXPECT_EQ(service.getLostCount(), 0U);
}

TEST_F(LgServiceLogrotateTest, ANewFileWithAHangup)
{
    configure("    create\n    postrotate\n        kill -HUP " +
              std::to_string(support::processId()) + "\n    endscript\n");
    Zu::LgServiceOptions hungUp = options();
    hungUp._reopenOnHangup = true;
    const Zu::LgService service(hungUp);
    Numbers numbers(service);
    rotateWhileLogging(numbers);
    if (IsSkipped()) return;
    checkAll(numbers);
    EXPECT_EQ(service.getLostCount(), 0U);
}

// What is logged between the copy and the end of the emptying is lost, so nothing is.
TEST_F(LgServiceLogrotateTest, AFileThatIsCopiedAndEmptied)
{
    configure("    copytruncate\n");
    const Zu::LgService service(options());
    Numbers numbers(service);
    for (int i = 0; i < ROTATIONS; ++i)
    {
        numbers.start();
        numbers.await(15);
        numbers.stop();
        EXPECT_EQ(rotate(), "");
        EXPECT_EQ(std::filesystem::file_size(logs() + "/events.log"), 0U);
    }
    numbers.start();
    numbers.await(15);
    numbers.stop();
    checkAll(numbers);
    EXPECT_EQ(service.getLostCount(), 0U);
}

} // namespace
