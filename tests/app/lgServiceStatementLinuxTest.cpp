// What the next service finds if a process is killed in the middle of a log statement: the
// statement is carried out instruction by instruction, and ended behind any of them.

#include "support/childProcess.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

using support::TempDir;

constexpr int EVERY = std::numeric_limits<int>::max();

// One kind of statement.
struct Kind
{
    std::string _name;
    // How many come before it, and how many characters their texts have besides.
    int _before;
    int _length;
    std::vector<std::string> _words;
    // Whether the queue has no room for it.
    bool _isLost;
};

// A process whose thread stands before a statement.
class Traced
{
public:
    // Its standard error is appended to a file.
    Traced(const std::vector<std::string>& words, const support::Environment& environment,
           const std::string& errors)
    {
        _process = fork();
        if (_process == 0) start(words, environment, errors);
        _thread = waitpid(-1, &_status, __WALL);
    }
    Traced(const Traced&) = delete;
    Traced& operator=(const Traced&) = delete;

    ~Traced()
    {
        kill(_process, SIGKILL);
        // The thread and the process.
        while (waitpid(-1, &_status, __WALL) > 0) continue;
    }

    bool hasStopped() const
    {
        return _thread > 0 && WIFSTOPPED(_status) && WSTOPSIG(_status) == SIGSTOP;
    }

    // The exit value of a process that could not be traced.
    int exitValue() const
    {
        return WIFEXITED(_status) ? WEXITSTATUS(_status) : -1;
    }

    // Carries out so many instructions, or fewer if the statement has returned before. Returns how
    // many it were; -1 if the process has ended by itself.
    int step(int count)
    {
        for (int i = 0; i < count; ++i)
        {
            if (ptrace(PTRACE_SINGLESTEP, _thread, nullptr, nullptr) != 0) return -1;
            if (waitpid(_thread, &_status, __WALL) != _thread || !WIFSTOPPED(_status)) return -1;
            if (WSTOPSIG(_status) == SIGSTOP) return i;
        }
        return count;
    }

private:
    [[noreturn]] static void start(const std::vector<std::string>& words,
                                   const support::Environment& environment,
                                   const std::string& errors)
    {
        dup2(open(errors.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600), 2);
        for (const auto& [name, value] : environment) setenv(name.c_str(), value->c_str(), 1);
        const std::string path = support::programPath("statementVictimLinux");
        std::vector<char*> pointers{const_cast<char*>(path.c_str())};
        for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
        pointers.push_back(nullptr);
        execv(path.c_str(), pointers.data());
        _exit(1);
    }

    pid_t _process = -1;
    pid_t _thread = -1;
    int _status = 0;
};

class LgServiceStatement : public testing::Test
{
protected:
    support::Environment environment() const
    {
        return {{"B7Q_TEST_DIR", _logs.path()}, {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", _maps.path()}};
    }

    // Ends a process behind so many instructions of the statement; returns how many were carried
    // out.
    std::optional<int> killAfter(const Kind& kind, int count)
    {
        const std::string run = std::to_string(_runs);
        std::vector<std::string> words{run, numbersOf(_runs), std::to_string(kind._before),
                                       std::to_string(kind._length)};
        words.insert(words.end(), kind._words.begin(), kind._words.end());
        ++_runs;
        Traced traced(words, environment(), _dir.file("errors"));
        if (!traced.hasStopped())
        {
            _exitValue = traced.exitValue();
            return std::nullopt;
        }
        return traced.step(count);
    }

    std::string numbersOf(int run) const
    {
        return _dir.file("numbers" + std::to_string(run));
    }

    // How many statements of a run have returned.
    std::uint32_t returnedOf(int run) const
    {
        std::ifstream file(numbersOf(run), std::ios::binary);
        std::uint32_t number = 0;
        file.read(reinterpret_cast<char*>(&number), sizeof number);
        return number;
    }

    // The service of each run has written what the run before left; this one is for the last.
    void recoverLast()
    {
        const support::ProgramResult result =
            support::runProgram("logVictim", {"main", _dir.file("last"), "1", "0"}, environment());
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_TRUE(std::filesystem::is_empty(_maps.path()));
        // Nobody has found anything that could not be read.
        EXPECT_EQ(std::filesystem::file_size(_dir.file("errors")), 0U)
            << std::ifstream(_dir.file("errors")).rdbuf();
    }

    // How often each line of each run is in the log; whatever else is there but the service's own
    // lines is a beginning of one.
    void readLog(const Kind& kind)
    {
        _counts.clear();
        _lost = 0;
        const std::string end =
            ' ' + std::string(static_cast<std::size_t>(kind._length), '.') + " end";
        std::ifstream file(_logs.file("events.log"), std::ios::binary);
        int fragments = 0;
        for (std::string line; std::getline(file, line);)
        {
            if (line.empty() || line.rfind("=====", 0) == 0) continue;
            const std::size_t text = std::min(line.find("): "), line.find(") Warning: Victim r"));
            int run = 0;
            int number = 0;
            int length = 0;
            const std::string rest = text == std::string::npos ? "" : line.substr(text);
            if (std::sscanf(rest.c_str(), ") Warning: Victim r%d n%d%n", &run, &number, &length) ==
                    2 &&
                rest.substr(static_cast<std::size_t>(length)) == end)
                ++_counts[{run, number}];
            else if (line.find("Informational: Event overflow [1]") != std::string::npos)
                ++_lost;
            else
            {
                ++fragments;
                std::cout << "a fragment: " << line.substr(0, 200) << std::endl;
            }
        }
        // Each kill may tear one line, of the writing thread.
        const bool isHeld =
            std::find(kind._words.begin(), kind._words.end(), "held") != kind._words.end();
        EXPECT_LE(fragments, isHeld ? 0 : _runs);
    }

    // Whether run's account holds.
    void checkRun(const Kind& kind, int run, int step) const
    {
        SCOPED_TRACE("the run " + std::to_string(run) + ", behind the instruction " +
                     std::to_string(step));
        const auto countOf = [&](int number)
        {
            const auto found = _counts.find({run, number});
            return found == _counts.end() ? 0 : found->second;
        };
        for (int i = 0; i < kind._before; ++i) ASSERT_EQ(countOf(i), 1) << "the event " << i;
        const bool hasReturned = returnedOf(run) == static_cast<std::uint32_t>(kind._before) + 1;
        const int most = kind._isLost ? 0 : 1;
        EXPECT_LE(countOf(kind._before), most);
        EXPECT_GE(countOf(kind._before), hasReturned ? most : 0);
    }

    void check(const Kind& kind, const std::vector<int>& steps)
    {
        readLog(kind);
        std::size_t returned = 0;
        for (std::size_t i = 0; i < steps.size(); ++i)
        {
            const int run = static_cast<int>(i);
            checkRun(kind, run, steps[i]);
            if (returnedOf(run) > static_cast<std::uint32_t>(kind._before)) ++returned;
        }
        // A loss is there if its statement has returned; one may be there before.
        EXPECT_GE(_lost, kind._isLost ? returned : 0U);
        EXPECT_LE(_lost, kind._isLost ? steps.size() : 0U);
        std::size_t events = 0;
        for (const auto& [place, count] : _counts) events += static_cast<std::size_t>(count);
        EXPECT_LE(events, steps.size() * (static_cast<std::size_t>(kind._before) + 1));
    }

    // Ends processes at so many instructions of a statement, evenly distributed.
    void killEverywhere(const Kind& kind, int kills)
    {
        const std::optional<int> whole = killAfter(kind, EVERY);
        if (!whole && _exitValue == REFUSED)
            GTEST_SKIP() << "The system does not let this process trace another one.";
        ASSERT_TRUE(whole.has_value()) << _exitValue;
        ASSERT_GT(*whole, 0);
        std::vector<int> steps{*whole};
        // A sanitizer's instructions are many.
        if (support::underSanitizer) kills = std::max(1, kills / 10);
        if (std::getenv("ZU_STRESS_ENDS")) kills = std::min(*whole, 2000);
        // Another run of this test takes other ones.
        const int stride = (*whole + kills - 1) / kills;
        const int first =
            static_cast<int>(support::processId() % static_cast<std::uint32_t>(stride));
        for (int step = first; step < *whole; step += stride)
        {
            const std::optional<int> done = killAfter(kind, step);
            ASSERT_TRUE(done.has_value()) << _exitValue;
            ASSERT_GE(*done, 0);
            steps.push_back(step);
        }
        recoverLast();
        check(kind, steps);
        std::cout << kind._name << ": " << *whole << " instructions, " << steps.size()
                  << " kills, from " << first << " on" << std::endl;
    }

    static constexpr int REFUSED = 7;

    TempDir _dir;
    TempDir _logs;
    TempDir _maps;
    int _runs = 0;
    int _exitValue = 0;
    // By run and number.
    std::map<std::pair<int, int>, int> _counts;
    std::size_t _lost = 0;
};

TEST_F(LgServiceStatement, MayBeKilledBehindAnyInstruction)
{
    killEverywhere({"a statement", 5, 20, {}, false}, 30);
}

// Nothing is written before the kill: the next service finds all events where they waited.
TEST_F(LgServiceStatement, MayBeKilledWhileNothingIsWritten)
{
    killEverywhere({"a statement, the writing thread stands still", 5, 20, {"held"}, false}, 120);
}

TEST_F(LgServiceStatement, MayBeKilledWhileItsThreadGetsAQueue)
{
    killEverywhere({"the first statement of a thread", 5, 20, {"first"}, false}, 40);
}

// The first 16,384 characters of a queue are there from the beginning on.
TEST_F(LgServiceStatement, MayBeKilledWhileItsQueueGrows)
{
    killEverywhere({"a statement whose queue grows", 5, 3000, {"held"}, false}, 30);
}

// A queue takes 4,094 events; then losses are counted.
TEST_F(LgServiceStatement, ThatIsLostMayBeKilledWhileTheLossIsCounted)
{
    killEverywhere({"a statement that is lost", 4094, 1, {"held"}, true}, 10);
}

} // namespace
