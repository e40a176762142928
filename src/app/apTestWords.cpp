#include "app/apTestWords.h"

#include "app/apCommandLine.h"
#include "app/apNearest.h"
#include "app/apTestGlob.h"

#include <algorithm>
#include <string_view>

namespace Zu
{

namespace
{

using Texts = std::vector<std::string>;

const std::vector<ApOption>& options()
{
    static const auto* const list = new std::vector<ApOption>{{0, false, "all"},
                                                              {0, true, "exclude"},
                                                              {0, true, "junit"},
                                                              {0, false, "list"},
                                                              {0, false, "help"}};
    return *list;
}

// The words without letters: one dash means something else here, except where a value is expected.
Texts inLongForm(const Texts& words)
{
    Texts result;
    bool isValue = false;
    bool areOptionsOver = false;
    for (const std::string& word : words)
    {
        const bool isExclusion =
            !isValue && !areOptionsOver && word.size() > 1 && word[0] == '-' && word[1] != '-';
        if (isExclusion && word == "-h")
            result.emplace_back("--help");
        else
            result.push_back(isExclusion ? "--exclude=" + word.substr(1) : word);
        areOptionsOver = areOptionsOver || (word == "--" && !isValue);
        isValue = !isValue && !areOptionsOver && (word == "--exclude" || word == "--junit");
    }
    return result;
}

void take(ApTestWords& request, const std::string& option, const std::string& value)
{
    if (option == "help") request._showsHelp = true;
    if (option == "list") request._lists = true;
    if (option == "all") request._runsAll = true;
    if (option == "exclude") request._excluded.push_back(value);
    if (option != "junit") return;
    request._junit = value;
    if (value.empty()) request._errors.emplace_back("option '--junit' needs the name of a file");
}

// Marks the groups that a name or pattern stands for.
void mark(std::vector<bool>& marks, const std::string& pattern, const Texts& names, Texts& errors)
{
    bool isFound = false;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        if (!apMatchesGlob(pattern, names[i])) continue;
        marks[i] = true;
        isFound = true;
    }
    if (isFound) return;
    const char* const what = apIsGlob(pattern) ? "no group matches '" : "there is no group '";
    errors.push_back(what + pattern + "'" + apDidYouMean(pattern, names));
}

} // namespace

ApTestWords apReadTestWords(const Texts& words)
{
    const ApCommandLine line(options(), inLongForm(words));
    ApTestWords request;
    request._errors = line.errors();
    request._included = line.words();
    for (const ApGiven& given : line.given())
        take(request, options()[given._option]._longName, given._value);
    return request;
}

ApTestChoice apChooseTests(const ApTestWords& words, const Texts& names)
{
    ApTestChoice choice;
    const bool areAllMeant =
        words._runsAll || (words._included.empty() && (words._lists || !words._excluded.empty()));
    std::vector<bool> included(names.size(), areAllMeant);
    std::vector<bool> excluded(names.size(), false);
    for (const std::string& pattern : words._included)
        mark(included, pattern, names, choice._errors);
    for (const std::string& pattern : words._excluded)
        mark(excluded, pattern, names, choice._errors);
    for (std::size_t i = 0; i < names.size(); ++i)
        if (included[i] && !excluded[i]) choice._groups.push_back(i);
    if (!choice._groups.empty() || words._lists) return choice;
    // A mistake that was found already may be the reason.
    if (!choice._errors.empty() || !words._errors.empty()) return choice;
    if (names.empty())
        choice._errors.emplace_back("there are no groups");
    else if (areAllMeant || !words._included.empty())
        choice._errors.emplace_back("no group is left to run");
    else
        choice._errors.emplace_back("nothing is named to run: name groups, or give '--all'");
    return choice;
}

std::string apTestUsage(const std::string& program)
{
    return "usage: " + program +
           " [option]... [GROUP]...\n"
           "Runs groups of tests. GROUP is a name, or a pattern: '*' stands for any\n"
           "characters, '?' for one.\n"
           "\n"
           "options:\n"
           "  --all              runs all groups\n"
           "  -GROUP             leaves out a group, or what a pattern stands for; without a\n"
           "                     GROUP to run, all others run\n"
           "  --exclude=GROUP    the same\n"
           "  --junit=FILE       writes a report in the form of JUnit's XML\n"
           "  --list             shows the names, one to a line, and runs nothing\n"
           "  -h, --help         shows this text, and ends\n"
           "  --                 ends the options: what follows are groups to run\n";
}

} // namespace Zu
