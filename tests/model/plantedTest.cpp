// Planted errors: each acquire and each release of the code under test is weakened in turn, and a
// scenario must notice. What is not noticed has to be in a list, with the reason why it is not
// needed.

#include "bellScenarios.h"
#include "modelChecker.h"
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

// A statement of the sources as "component function: text of the line".
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

// Without parameters and scopes, of which some compilers note none.
std::string shortName(const std::string& function)
{
    const std::string name = function.substr(0, function.find('('));
    const std::size_t scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}

// The name of the source, without folder and extension.
std::string componentAt(const std::string& place)
{
    const std::size_t begin = place.rfind('/') + 1;
    return place.substr(begin, place.find('.', begin) - begin);
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
        return componentAt(place) + " " + shortName(function) + ": " + lineOf(place);
    }
    return "";
}

struct Unneeded
{
    // A part of the statement.
    const char* _statement;
    int _strength;
    const char* _reason;
    // Whether it stands in for others of the list: all of those together are needed.
    bool _isStandIn = false;
};

const char* nameOf(int strength)
{
    if (strength == model::WithoutLightFence) return " - the fence";
    return strength == model::WithoutAcquire ? " - the acquire" : " - the release";
}

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

using Zu::LgBell;
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
        for (const int part :
             {model::WithoutAcquire, model::WithoutRelease, model::WithoutLightFence})
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

template <std::size_t SIZE>
const Unneeded* findIn(const Unneeded (&list)[SIZE], const Planted& planted)
{
    for (const Unneeded& entry : list)
        if (entry._strength == planted.second &&
            planted.first.find(entry._statement) != std::string::npos)
            return &entry;
    return nullptr;
}

template <std::size_t SIZE>
void plant(const std::vector<Scenario>& scenarios, const Unneeded (&list)[SIZE])
{
    int noticed = 0;
    std::vector<model::Site> standIns;
    for (const auto& [planted, sites] : findStatements(scenarios))
    {
        const std::string text = planted.first + nameOf(planted.second);
        const Unneeded* const listed = findIn(list, planted);
        const bool isSeen = isNoticed(scenarios, sites, planted.second);
        noticed += isSeen;
        EXPECT_TRUE(isSeen || listed) << "not noticed: " << text;
        EXPECT_FALSE(isSeen && listed) << "is needed: " << text;
        std::cout << (isSeen ? "  noticed: " : "  not needed: ") << text << '\n';
        if (listed) std::cout << "    because " << listed->_reason << '\n';
        if (listed && listed->_isStandIn)
            standIns.insert(standIns.end(), sites.begin(), sites.end());
    }
    std::cout << "  " << noticed << " planted errors were noticed\n";
    EXPECT_GT(noticed, 0);
    if (standIns.empty()) return;
    EXPECT_TRUE(isNoticed(scenarios, standIns, model::WithoutAcquire)) << "all stand-ins together";
}

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
