// Planted errors of the queue, its reader, and the bell.

#include "bellScenarios.h"
#include "modelChecker.h"
#include "planting.h"
#include "queueScenarios.h"
#include "readerScenarios.h"
#include "scenario.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using planting::plant;
using planting::Unneeded;
using Zu::LgBell;

const Unneeded OF_QUEUE[] = {
    {"lgQueue isEmpty", model::WithoutAcquire, "the checks of the next calls acquire again", true},
    {"lgQueue readEntry: ZU_INTERNAL_ASSERT", model::WithoutAcquire,
     "the reader has acquired it when it asked whether the queue is empty", true},
    {"lgQueue removeEntry: ZU_INTERNAL_ASSERT", model::WithoutAcquire,
     "the reader has acquired it before it read the entry", true},
    {"lgQueue ~LgQueue: ZU_INTERNAL_ASSERT", model::WithoutAcquire,
     "who ends a queue has seen the end of its producer"},
    {"lgStream resetTo: _lastComplete", model::WithoutRelease,
     "a queue's reader looks for a text only when it has acquired the entry"},
};

const Unneeded OF_BELL[] = {
    {"lgBell announce: _state.fetch_or", model::WithoutRelease,
     "who rings reads nothing of the listener but its mark"},
    {"lgBell isHeard", model::WithoutAcquire,
     "who rings reads nothing of the listener but its mark"},
    {"lgBell ringAloud: if ((_state.fetch_and", model::WithoutAcquire,
     "who rings reads nothing of the listener but its mark"},
    {"lgBell ringAloud: if ((_state.fetch_and", model::WithoutRelease,
     "the mutex passes on what was done before the ring"},
};

TEST(PlantedErrors, OfTheQueueAndItsReaderAreNoticed)
{
    readerScenarios::prepareLogger();
    std::vector<Scenario> scenarios = queueScenarios::all();
    for (const Scenario& scenario : readerScenarios::all()) scenarios.push_back(scenario);
    plant(scenarios, OF_QUEUE);
}

TEST(PlantedErrors, OfTheBellAreNoticed)
{
    plant(bellScenarios::small(), OF_BELL);
}

std::string violationOf(const std::function<void()>& scenario)
{
    const std::string text = model::explore(scenario)._violation;
    return text.substr(0, text.find('\n'));
}

TEST(PlantedErrors, ABarrierThatDoesNothingIsNoticed)
{
    const bellScenarios::Case broken{"", &bellScenarios::pretend, 1, 1, 1};
    EXPECT_EQ(violationOf(bellScenarios::ringing(broken)), "a deadlock");
}

TEST(PlantedErrors, AListenerThatDoesNotLookAgainIsNoticed)
{
    for (const LgBell::Barrier barrier : {&model::heavyBarrier, LgBell::Barrier()})
    {
        const bellScenarios::Case broken{"", barrier, 1, 1, 1, false};
        EXPECT_EQ(violationOf(bellScenarios::ringing(broken)), "a deadlock");
    }
}

TEST(PlantedErrors, AReaderThatDoesNotAskForEmptinessAgainIsNoticed)
{
    using queueScenarios::ending;
    queueScenarios::prepareLibrary();
    for (const queueScenarios::Case& c : queueScenarios::ENDS)
    {
        EXPECT_NE(violationOf(ending<queueScenarios::TakingReader>(c, false)), "");
        EXPECT_NE(violationOf(ending<queueScenarios::BatchReader>(c, false)), "");
    }
}

std::string outputOf(const std::string& program)
{
    // Not into the report of this program.
    std::FILE* const output = popen(("GTEST_OUTPUT= " + (ZU_PROGRAMS + program)).c_str(), "r");
    std::string text;
    for (int c = std::getc(output); c != EOF; c = std::getc(output)) text += static_cast<char>(c);
    pclose(output);
    return text;
}

// The tests of the bell and the reader, with sources in which something is missing.
TEST(PlantedErrors, InCopiesOfTheSourcesAreNoticed)
{
    const std::map<std::string, std::string> violations{{"plantedEmptiness", "_beg == _end"},
                                                        {"plantedSecondLook", "a deadlock"},
                                                        {"plantedBarrier", "a deadlock"}};
    for (const auto& [program, violation] : violations)
    {
        const std::string text = outputOf(program);
        EXPECT_NE(text.find("FAILED"), std::string::npos)
            << program << " finds nothing: is its text still in the source?";
        EXPECT_NE(text.find(violation), std::string::npos) << program << '\n' << text;
    }
}

} // namespace
