/// @file
/// Which records are shown.

#ifndef ZU_ZULOG_ZLFILTER_H
#define ZU_ZULOG_ZLFILTER_H

#include "zlRecord.h"
#include "zlReports.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// What is asked for; all conditions must hold, and where there are several values, one of them.
struct ZlSelection
{
    /// Bit 1 << level. An event of unknown level is of none of them.
    std::uint32_t _levels = ALL_LEVELS;
    /// Globs: "*" stands for any characters, "?" for one. Letter case matters.
    std::vector<std::string> _groups;
    std::vector<std::uint32_t> _threads;
    std::vector<std::uint32_t> _processes;
    /// Regular expressions, searched for in an event's group and text as they stand in the file.
    std::vector<std::string> _matches;
    std::vector<std::string> _exclusions;
    /// UTC, in nanoseconds since 1970: from the first one on, and before the second one.
    std::optional<std::int64_t> _since;
    std::optional<std::int64_t> _until;
    bool _areMarksHidden = false;

    static constexpr std::uint32_t ALL_LEVELS = (1U << LgTypes::NUM_LEVELS) - 1;
};

/// Marks and unreadable lines are accepted if nothing but processes and times is asked for.
///
/// Not thread-safe.
class ZlFilter
{
public:
    /// Raises ZlError for an expression that is none, with the place and the reason.
    ZlFilter(const ZlSelection& selection, ZlReports& reports);
    ~ZlFilter();

    /// In so many lines the search for an expression may take too long.
    static constexpr std::uint64_t MOST_GIVEN_UP = 100;

    /// A record in which the search for an expression takes too long is reported, and accepted,
    /// also where the expression excludes. Raises ZlError after too many of them.
    bool accepts(const ZlRecord& record);

    /// How many records were left out because times are asked for, and theirs is not known.
    std::uint64_t getUndatedCount() const
    {
        return _undated;
    }

    /// Reports their number, if there are any; and the groups that are asked for but that none of
    /// the events was of, with some that they were of.
    void report() const;

private:
    class Expressions;
    bool acceptsEvent(const ZlRecord& record);
    bool acceptsGroup(std::string_view group);
    void noteGroup(std::string_view group);
    void reportGroups() const;
    bool acceptsTime(const ZlRecord& record);

    ZlSelection _selection;
    ZlReports& _reports;
    std::unique_ptr<Expressions> _matches;
    std::unique_ptr<Expressions> _exclusions;
    bool _areEventsAlone;
    // Of each glob, whether an event was of it; and some groups of the others.
    std::vector<bool> _isGroupFound;
    std::set<std::string, std::less<>> _otherGroups;
    std::uint64_t _undated = 0;
    std::uint64_t _givenUp = 0;
};

/// Why a text is no regular expression, with the place and the reason; empty if it is one.
std::string zlFaultOfExpression(const std::string& text);

/// Whether a name is of the form of a glob.
bool zlMatchesGlob(std::string_view glob, std::string_view name);

/// The levels that "Warning" stands for, it and the more severe ones; letter case does not matter,
/// and a beginning that no other level has stands for the level.
/// Several names with commas between them stand for these alone, and so does one with "=" in front.
/// Nothing for a name that is none.
std::optional<std::uint32_t> zlParseLevels(std::string_view text);

} // namespace Zu

#endif
