// Planted errors: each acquire and each release of the code under test is weakened in turn, and a
// scenario must notice. What is not noticed has to be in a list, with the reason why it is not
// needed.

#include "bellScenarios.h"
#include "modelChecker.h"
#include "queueScenarios.h"
#include "scenario.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace
{

// A statement of the sources as "function: text of the line".
using Statement = std::string;

// What is left of a line without the blanks around it.
std::string trimmed(const std::string& line)
{
    const std::size_t begin = line.find_first_not_of(' ');
    return begin == std::string::npos ? ""
                                      : line.substr(begin, line.find_last_not_of(' ') + 1 - begin);
}

std::string lineOf(const std::string& place)
{
    const std::size_t begin = place.rfind("src/");
    const std::size_t colon = place.find(':', begin);
    std::ifstream source(ZU_SOURCE_DIR + place.substr(begin, colon - begin));
    std::string line;
    for (int i = std::stoi(place.substr(colon + 1)); i > 0; --i) std::getline(source, line);
    return trimmed(line);
}

// Without parameters and the library's name space.
std::string shortName(const std::string& function)
{
    const std::string name = function.substr(0, function.find('('));
    const std::size_t begin = name.find("Zu::");
    return begin == std::string::npos ? name : name.substr(begin + 4);
}

// The innermost statement of the library's that is not a part of an index itself; empty if the
// operation is in a test.
Statement statementAt(model::Site site)
{
    std::istringstream frames(model::describe(site));
    std::string function, place;
    while (std::getline(frames, function) && std::getline(frames, place))
    {
        if (place.find("src/") == std::string::npos) continue;
        if (place.find("lgRingIndex.h") != std::string::npos) continue;
        return shortName(function) + ": " + lineOf(place);
    }
    return "";
}

struct Unneeded
{
    // A part of the statement.
    const char* _statement;
    int _strength;
    const char* _reason;
};

using Planted = std::pair<Statement, int>;

std::map<Planted, std::vector<model::Site>> findStatements(const std::vector<Scenario>& scenarios)
{
    std::map<model::Site, int> sites;
    for (const Scenario& scenario : scenarios)
        for (const auto& [site, strength] : model::explore(scenario._run)._sites)
            sites[site] |= strength;
    std::map<Planted, std::vector<model::Site>> statements;
    for (const auto& [site, strength] : sites)
    {
        const Statement statement = statementAt(site);
        if (statement.empty()) continue;
        for (const int part : {model::WithoutAcquire, model::WithoutRelease})
            if (strength & part) statements[{statement, part}].push_back(site);
    }
    return statements;
}

bool isNoticed(const std::vector<Scenario>& scenarios, const std::vector<model::Site>& sites,
               int strength)
{
    model::Options options;
    for (const model::Site site : sites) options._weakened[site] = strength;
    for (const Scenario& scenario : scenarios)
        if (!model::explore(scenario._run, options)._violation.empty()) return true;
    return false;
}

void plant(const std::vector<Scenario>& scenarios, const std::vector<Unneeded>& unneeded)
{
    int noticed = 0;
    for (const auto& [planted, sites] : findStatements(scenarios))
    {
        const auto& [statement, strength] = planted;
        const std::string text =
            statement + (strength == model::WithoutAcquire ? ", acquire" : ", release");
        const Unneeded* listed = nullptr;
        for (const Unneeded& entry : unneeded)
            if (entry._strength == strength &&
                statement.find(entry._statement) != std::string::npos)
                listed = &entry;
        const bool isSeen = isNoticed(scenarios, sites, strength);
        noticed += isSeen;
        EXPECT_EQ(isSeen, listed == nullptr) << text;
        if (!isSeen)
            std::cout << "  not noticed: " << text << ": " << (listed ? listed->_reason : "?")
                      << '\n';
        else
            std::cout << "  noticed: " << text << '\n';
    }
    std::cout << "  " << noticed << " planted errors noticed\n";
    EXPECT_GT(noticed, 0);
}

TEST(PlantedErrors, OfTheQueueAreNoticed)
{
    queueScenarios::prepareLibrary();
    plant(queueScenarios::all(), {});
}

TEST(PlantedErrors, OfTheBellAreNoticed)
{
    plant(bellScenarios::all(), {});
}

TEST(PlantedErrors, ABarrierThatDoesNothingIsNoticed)
{
    const bellScenarios::Case broken{"", &bellScenarios::pretend, 1, 1, 1};
    const model::Result result = model::explore(bellScenarios::ringing(broken));
    EXPECT_EQ(result._violation.substr(0, 10), "a deadlock");
}

} // namespace
