// What the scenarios share: their duration, and their line in the table.

#ifndef ZU_TESTS_STRESS_SCENARIO_H
#define ZU_TESTS_STRESS_SCENARIO_H

#include "stress/account.h"
#include "stress/watchdog.h"
#include "support/childProcess.h"
#include "support/tempDir.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>
#include <string>

namespace stress
{

// The counts that a program has printed; zeros if it printed nothing.
inline Account accountOf(const support::ProgramResult& result)
{
    const std::string& out = result.out;
    std::istringstream words(out.substr(std::min(out.find("account"), out.size())));
    std::string word;
    Account account;
    words >> word >> account._attempted >> account._accepted >> account._lost >> account._unwritten;
    return account;
}

// A lock's name, as unique as that of a directory.
inline std::string nameOfLock(const support::TempDir& dir)
{
    return "zuStress " + std::filesystem::path(dir.path()).filename().string();
}

// Adds up what its rounds counted, and prints it as one line at its end.
class Scenario
{
public:
    explicit Scenario(const std::string& name)
        : _name(name), _watchdog(name), _end(std::chrono::steady_clock::now() + timeOfScenario())
    {
    }
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;

    ~Scenario()
    {
        std::cout << "| " << _name << " | " << _rounds << " | " << _sum._attempted << " | "
                  << _sum._accepted << " | " << _sum._lost << " | " << _written << " | "
                  << _sum._unwritten << " | " << _shortened << " | " << _torn << " | " << _note
                  << " |" << std::endl;
    }

    // Whether there is another round: at least one, and more until the time is over or one has
    // failed.
    bool goesOn()
    {
        const bool isFirst = _rounds == 0;
        const bool more =
            isFirst || (std::chrono::steady_clock::now() < _end && !testing::Test::HasFailure());
        if (more) ++_rounds;
        return more;
    }

    // A round's account. What was attempted was accepted or lost, and nothing in the file is
    // damaged.
    void add(const Account& account, const FileAccount& file)
    {
        _sum += account;
        _written += file._written;
        _shortened += file._shortened;
        _torn += file._torn;
        EXPECT_TRUE(_isWordy || file._shortened == 0) << file._shortened;
        EXPECT_EQ(account._attempted, account._accepted + account._lost);
        EXPECT_LE(file._overflowLines, account._lost);
        for (const std::string& error : file._errors) ADD_FAILURE() << error;
    }

    // Texts may be shortened.
    void allowShortened()
    {
        _isWordy = true;
    }

    void note(const std::string& text)
    {
        _note = text;
    }

private:
    std::string _name;
    Watchdog _watchdog;
    std::chrono::steady_clock::time_point _end;
    int _rounds = 0;
    Account _sum;
    std::uint64_t _written = 0;
    std::uint64_t _shortened = 0;
    std::uint64_t _torn = 0;
    bool _isWordy = false;
    std::string _note;
};

} // namespace stress

#endif
