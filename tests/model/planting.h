// Planted errors: each acquire and each release of the code under test is weakened in turn, and a
// scenario must notice. What is not noticed has to be in a list, with the reason why it is not
// needed.

#ifndef ZU_TESTS_MODEL_PLANTING_H
#define ZU_TESTS_MODEL_PLANTING_H

#include "modelChecker.h"
#include "scenario.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace planting
{

// A statement of the sources as "component function: text of the line".
using Statement = std::string;

// What is left of a line without the blanks around it.
inline std::string trimmed(const std::string& line)
{
    const std::size_t begin = line.find_first_not_of(' ');
    return begin == std::string::npos ? ""
                                      : line.substr(begin, line.find_last_not_of(' ') + 1 - begin);
}

inline std::string lineOf(const std::string& place)
{
    const std::size_t begin = place.rfind("src/");
    const std::size_t colon = place.find(':', begin);
    std::ifstream source(ZU_SOURCE_DIR + place.substr(begin, colon - begin));
    std::string line;
    for (int i = std::stoi(place.substr(colon + 1)); i > 0; --i) std::getline(source, line);
    return trimmed(line);
}

// Without parameters and scopes, of which some compilers note none.
inline std::string shortName(const std::string& function)
{
    const std::string name = function.substr(0, function.find('('));
    const std::size_t scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}

// The name of the source, without folder and extension.
inline std::string componentAt(const std::string& place)
{
    const std::size_t begin = place.rfind('/') + 1;
    return place.substr(begin, place.find('.', begin) - begin);
}

// The innermost statement of the library's that is not a part of an index itself; empty if the
// operation is in a test.
inline Statement statementAt(model::Site site)
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

inline const char* nameOf(int strength)
{
    if (strength == model::WithoutLightFence) return " - the fence";
    return strength == model::WithoutAcquire ? " - the acquire" : " - the release";
}

using Planted = std::pair<Statement, int>;

inline std::map<Planted, std::vector<model::Site>>
findStatements(const std::vector<Scenario>& scenarios, const std::string& components)
{
    std::map<model::Site, int> sites;
    for (const Scenario& scenario : scenarios)
        for (const auto& [site, strength] : explore(scenario)._sites) sites[site] |= strength;
    std::map<Planted, std::vector<model::Site>> statements;
    for (const auto& [site, strength] : sites)
    {
        const Statement statement = statementAt(site);
        if (statement.empty() || !statement.starts_with(components)) continue;
        for (const int part :
             {model::WithoutAcquire, model::WithoutRelease, model::WithoutLightFence})
            if (strength & part) statements[{statement, part}].push_back(site);
    }
    return statements;
}

inline bool isNoticed(const std::vector<Scenario>& scenarios, const std::vector<model::Site>& sites,
                      int strength)
{
    model::Options options;
    for (const model::Site site : sites) options._weakened[site] = strength;
    for (const Scenario& scenario : scenarios)
        if (!explore(scenario, options)._violation.empty()) return true;
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

// In components whose names begin like this.
template <std::size_t SIZE>
void plant(const std::vector<Scenario>& scenarios, const Unneeded (&list)[SIZE],
           const std::string& components = {})
{
    int noticed = 0;
    std::vector<model::Site> standIns;
    for (const auto& [planted, sites] : findStatements(scenarios, components))
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

} // namespace planting

#endif
