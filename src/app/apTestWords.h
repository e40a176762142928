/// @file
/// The command line of a test program. Internal to the kit.

#ifndef ZU_APP_APTESTWORDS_H
#define ZU_APP_APTESTWORDS_H

#include <cstddef>
#include <string>
#include <vector>

namespace Zu
{

/// What the words of a command line request.
struct ApTestWords
{
    bool _showsHelp = false;
    bool _lists = false;
    bool _runsAll = false;
    /// Where a report goes; empty for none.
    std::string _junit;
    /// Names or patterns of groups, to be run and to be left out.
    std::vector<std::string> _included;
    std::vector<std::string> _excluded;
    /// What can't be used, each a sentence without a full stop.
    std::vector<std::string> _errors;
};

/// Takes the words apart, which do not begin with the program's name. A word with one dash in front
/// is what is left out; "--" ends the options and these.
ApTestWords apReadTestWords(const std::vector<std::string>& words);

/// Which groups are run.
struct ApTestChoice
{
    /// Their indices, in ascending order.
    std::vector<std::size_t> _groups;
    /// Names and patterns that no group has, each a sentence without a full stop.
    std::vector<std::string> _errors;
};

/// Chooses among groups of these names. Without a name to be run there are none, unless the words
/// request all, list groups, or leave out some: then it is all others. A choice of no group is an
/// error, except in a list.
ApTestChoice apChooseTests(const ApTestWords& words, const std::vector<std::string>& names);

/// The text of `--help`, with a line end.
std::string apTestUsage(const std::string& program);

} // namespace Zu

#endif
