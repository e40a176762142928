// A scenario with its name.

#ifndef ZU_TESTS_MODEL_SCENARIO_H
#define ZU_TESTS_MODEL_SCENARIO_H

#include "modelChecker.h"

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <vector>

struct Scenario
{
    std::string _name;
    std::function<void()> _run;
    // How many waits with a limit may reach it in each thread.
    int _expiringWaits = 0;
};

inline model::Result explore(const Scenario& scenario, model::Options options = {})
{
    options._expiringWaits = scenario._expiringWaits;
    return model::explore(scenario._run, options);
}

// Whether there is time for larger configurations.
inline bool isLongRun()
{
    return std::getenv("ZU_MODEL_LONG") != nullptr;
}

// Explores each; expects that all was explored, and nothing is wrong.
inline void exploreAll(const std::vector<Scenario>& scenarios)
{
    for (const Scenario& scenario : scenarios)
    {
        SCOPED_TRACE(scenario._name);
        const model::Result result = explore(scenario);
        EXPECT_EQ(result._violation, "");
        EXPECT_TRUE(result._isComplete);
        std::cout << "  " << scenario._name << ": " << result._executions << " executions, "
                  << result._deadEnds << " dead ends" << std::endl;
    }
}

#endif
