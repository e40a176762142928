// The hand-over with errors, each of which a scenario must notice.

#include "exploreHandOver.h"
#include "planted.h"
#include "recoveryScenarios.h"
#include "scenario.h"

#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <vector>

namespace
{

// What is noticed first, and by which scenario; empty if nothing is.
std::string noticed(const std::vector<Scenario>& scenarios, const handOver::Settings& settings)
{
    for (const Scenario& scenario : scenarios)
    {
        handOver::HandOver handOver(settings);
        const std::string violation = explore(scenario, handOver)._violation;
        if (!violation.empty())
            return violation.substr(0, violation.find('\n')) + ", by: " + scenario._name;
    }
    return {};
}

// Plants the errors of these numbers; the build has put them into the copies of the sources.
void plant(int first, int last, const std::vector<Scenario>& scenarios,
           const handOver::Settings& settings)
{
    recoveryScenarios::Prepared::instance();
    for (Zu::plantedError = first; Zu::plantedError <= last; ++Zu::plantedError)
    {
        const std::string text = noticed(scenarios, settings);
        EXPECT_NE(text, "") << "error " << Zu::plantedError;
        std::cout << "  error " << Zu::plantedError << ": " << text << std::endl;
    }
    Zu::plantedError = 0;
}

TEST(PlantedErrors, OfTheHandOverAreNoticed)
{
    plant(1, 13, recoveryScenarios::all(), {0, false});
}

TEST(PlantedErrors, OfTheRecoveryAreNoticed)
{
    plant(14, 15, recoveryScenarios::simple(), {1, false});
}

// Otherwise a scenario would fail without an error as well.
TEST(PlantedErrors, OfLossesThatAreRecoveredAreNoticed)
{
    plant(16, 16, recoveryScenarios::all(), {1, false});
}

} // namespace
