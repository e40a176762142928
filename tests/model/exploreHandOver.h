// Explores a scenario of the hand-over.

#ifndef ZU_TESTS_MODEL_EXPLOREHANDOVER_H
#define ZU_TESTS_MODEL_EXPLOREHANDOVER_H

#include "handOver.h"
#include "scenario.h"

#include <gtest/gtest.h>
#include <iostream>
#include <vector>

inline model::Result explore(const Scenario& scenario, handOver::HandOver& handOver)
{
    model::Options options;
    options._watcher = &handOver;
    return explore(scenario, options);
}

// Explores each; expects that all was explored, and nothing is wrong.
inline void exploreHandOver(const std::vector<Scenario>& scenarios,
                            const handOver::Settings& settings)
{
    for (const Scenario& scenario : scenarios)
    {
        SCOPED_TRACE(scenario._name);
        handOver::HandOver handOver(settings);
        const model::Result result = explore(scenario, handOver);
        EXPECT_EQ(result._violation, "");
        EXPECT_TRUE(result._isComplete);
        std::cout << "  " << scenario._name << ": " << result._executions << " executions, "
                  << handOver.getMoments() << " moments, " << handOver.getStates() << " states, "
                  << handOver.getRecoveries() << " recoveries" << std::endl;
    }
}

#endif
