// Processes that end in every way, in random order, at random moments; and the starts after them,
// some of which end in the middle of their recovery.

#include "base/osEnv.h"

#include "stress/watchdog.h"
#include "support/childProcess.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

using support::TempDir;

// The number in a variable of the environment.
std::uint32_t numberIn(const char* variable, std::uint32_t otherwise)
{
    const char* const text = Zu::OsEnv::getVariable(variable);
    return text && *text != '\0' ? static_cast<std::uint32_t>(std::stoul(text)) : otherwise;
}

// One end.
struct End
{
    std::string _way;
    std::uint32_t _threads;
    std::uint32_t _events;
    // The step of the writing thread, or the microseconds, after which it comes.
    std::uint32_t _when = 0;
    // The steps at which the recoveries that follow are ended.
    std::vector<std::uint32_t> _recoverySteps;
};

std::ostream& operator<<(std::ostream& out, const End& end)
{
    out << end._way << ", " << end._threads << " threads, " << end._events << " events, "
        << end._when << "; recoveries end at";
    for (const std::uint32_t step : end._recoverySteps) out << ' ' << step;
    return out;
}

class Ends
{
public:
    explicit Ends(std::uint32_t seed) : _random(seed) {}

    End next()
    {
        // "step" and "other" end it in the middle. Wine can hang if a process ends itself while its
        // other threads work, so the latter is left out there.
        static const std::vector<std::string> WAYS = {
            "main",      "living",   "outlives", "exit", "quick_exit", "_exit", "abort",
            "terminate", "uncaught", "segv",     "kill", "step",       "other", "other"};
        constexpr std::size_t LEFT_OUT = support::onWindows ? 2 : 0;
        End end{WAYS[upTo(WAYS.size() - LEFT_OUT - 1)],
                1 + upTo(7),
                upTo(10) == 0 ? 6000 : 1 + upTo(600),
                0,
                {}};
        if (end._way == "other")
        {
            end._events = 100000;
            end._when = upTo(1U << upTo(15));
        }
        if (end._way == "step") end._when = 1 + upTo(40);
        while (upTo(2) == 0) end._recoverySteps.push_back(1 + upTo(20));
        return end;
    }

private:
    std::uint32_t upTo(std::size_t most)
    {
        // Not a distribution of the standard library: they differ.
        return static_cast<std::uint32_t>(_random() % (most + 1));
    }

    std::mt19937 _random;
};

class StressEnds : public testing::Test
{
protected:
    void run(const std::string& way, const std::string& numbers, std::uint32_t threads,
             std::uint32_t events, std::uint32_t when)
    {
        support::runProgram(
            "logVictim",
            {way, numbers, std::to_string(threads), std::to_string(events), std::to_string(when)},
            {{"B7Q_TEST_DIR", _logs.path()}, {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", _maps.path()}});
    }

    void carryOut(const End& end)
    {
        const std::string numbers = _dir.file("numbers");
        run(end._way, numbers, end._threads, end._events, end._when);
        for (const std::uint32_t step : end._recoverySteps)
            run("recovery step", _dir.file("none"), 1, 0, step);
        run("main", _dir.file("none"), 1, 0, 0);
        readReturned(numbers, end._threads);
        readLog();
        check(end);
        fs::remove(numbers);
        fs::remove(_logs.file("events.log"));
    }

    // How many statements of each thread have returned.
    void readReturned(const std::string& numbers, std::uint32_t threads)
    {
        _returned.assign(threads, 0);
        std::ifstream file(numbers, std::ios::binary);
        file.read(reinterpret_cast<char*>(_returned.data()),
                  static_cast<std::streamsize>(threads * sizeof(std::uint32_t)));
    }

    // The numbers of each thread in the order in which they are in the log.
    void readLog()
    {
        _numbers.clear();
        _lost = 0;
        _fragments = 0;
        std::ifstream file(_logs.file("events.log"), std::ios::binary);
        for (std::string line; std::getline(file, line);)
        {
            if (line.empty() || line.rfind("=====", 0) == 0) continue;
            const std::size_t text = std::min(line.find(": Victim "), line.find(": Event "));
            const std::string rest = line.substr(std::min(text, line.size()));
            std::uint32_t thread = 0;
            std::uint32_t number = 0;
            std::uint32_t lost = 0;
            int size = 0;
            if (std::sscanf(rest.c_str(), ": Victim t%u n%u end%n", &thread, &number, &size) == 2 &&
                static_cast<std::size_t>(size) == rest.size())
                _numbers[thread].push_back(number);
            else if (std::sscanf(rest.c_str(), ": Event overflow [%u]", &lost) == 1)
                _lost += lost;
            else
                ++_fragments;
        }
    }

    // All that was accepted is there once, in its thread's order; what is missing is counted.
    void check(const End& end)
    {
        std::uint64_t missing = 0;
        for (std::uint32_t thread = 0; thread < end._threads; ++thread)
        {
            const std::vector<std::uint32_t>& numbers = _numbers[thread];
            for (std::size_t i = 1; i < numbers.size(); ++i)
                ASSERT_LT(numbers[i - 1], numbers[i]) << "thread " << thread;
            // The last statement need not have returned.
            const std::uint32_t last = numbers.empty() ? 0 : numbers.back() + 1;
            ASSERT_LE(last, _returned[thread] + 1) << "thread " << thread;
            missing += std::max(last, _returned[thread]) - numbers.size();
            _written += numbers.size();
        }
        _counted += _lost;
        _torn += _fragments;
        // A thread may be killed between the count of a loss and the end of its statement.
        EXPECT_LE(missing, _lost);
        EXPECT_GE(missing + end._threads, _lost);
        EXPECT_LE(_numbers.size(), end._threads);
        EXPECT_LE(_fragments, 1 + end._recoverySteps.size());
        EXPECT_TRUE(fs::is_empty(_maps.path()));
    }

    TempDir _dir;
    TempDir _logs;
    TempDir _maps;
    std::vector<std::uint32_t> _returned;
    std::map<std::uint32_t, std::vector<std::uint32_t>> _numbers;
    std::uint64_t _lost = 0;
    std::uint64_t _fragments = 0;
    // Of all ends.
    std::uint64_t _written = 0;
    std::uint64_t _counted = 0;
    std::uint64_t _torn = 0;
};

// The variable ZU_STRESS_ENDS sets their number. Then the seed is another one each time;
// ZU_STRESS_SEED repeats one.
TEST_F(StressEnds, HoweverAndWheneverAProcessEndsItsEventsAreThereOnce)
{
    constexpr std::uint32_t USUAL = support::onWindows || support::underSanitizer ? 6 : 20;
    const std::uint32_t count = numberIn("ZU_STRESS_ENDS", USUAL);
    const bool isUsual = count == USUAL;
    const std::uint32_t seed = numberIn(
        "ZU_STRESS_SEED", isUsual ? 1 : static_cast<std::uint32_t>(std::random_device()()));
    std::cout << count << " ends, ZU_STRESS_SEED=" << seed << std::endl;
    Ends ends(seed);
    std::map<std::string, int> ofWays;
    for (std::uint32_t i = 0; i < count && !HasFailure(); ++i)
    {
        const End end = ends.next();
        std::ostringstream what;
        what << "the end " << i << ": " << end;
        const stress::Watchdog watchdog(what.str());
        const testing::ScopedTrace trace(__FILE__, __LINE__, what.str());
        carryOut(end);
        ++ofWays[end._way];
    }
    for (const auto& [way, times] : ofWays) std::cout << way << ' ' << times << ", ";
    std::cout << "written " << _written << ", lost " << _counted << ", fragments " << _torn
              << std::endl;
}

} // namespace
