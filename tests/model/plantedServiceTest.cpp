// The log service with errors, each of which a scenario must notice.

#include "planted.h"
#include "scenario.h"
#include "serviceScenarios.h"

#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <vector>

namespace
{

// As many as the build has put into the copies of the sources.
constexpr int ERRORS = 19;

// What is noticed first, and by which scenario; empty if nothing is.
std::string noticed()
{
    std::vector<Scenario> scenarios = serviceScenarios::all();
    // Takes long unless there is something to notice.
    scenarios.push_back(serviceScenarios::TWO_FOR_A_LOOK);
    for (const Scenario& scenario : scenarios)
    {
        const std::string violation = explore(scenario)._violation;
        if (!violation.empty())
            return violation.substr(0, violation.find('\n')) + ", by: " + scenario._name;
    }
    return {};
}

TEST(PlantedErrors, OfTheServiceAreNoticed)
{
    serviceScenarios::State::instance();
    for (Zu::plantedError = 1; Zu::plantedError <= ERRORS; ++Zu::plantedError)
    {
        const std::string text = noticed();
        EXPECT_NE(text, "") << "error " << Zu::plantedError;
        std::cout << "  error " << Zu::plantedError << ": " << text << std::endl;
    }
    Zu::plantedError = 0;
}

} // namespace
