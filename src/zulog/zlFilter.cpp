#include "zulog/zlFilter.h"

#include "zulog/zlFile.h"
#include "zulog/zlFormat.h"

#include <algorithm>
#include <boost/regex.hpp>
#include <stdexcept>

namespace Zu
{

namespace
{

// Letter case of ASCII letters does not matter.
bool equalsName(std::string_view one, std::string_view other)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [lower](char a, char b) { return lower(a) == lower(b); });
}

// A level by its name, or by the beginning that no other one has.
std::optional<LgTypes::Level> levelOf(std::string_view name)
{
    std::optional<LgTypes::Level> found;
    int count = 0;
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i);
        const std::string_view full = LgTypes::levelToString(level);
        if (equalsName(name, full)) return level;
        if (name.empty() || !equalsName(name, full.substr(0, name.size()))) continue;
        found = level;
        ++count;
    }
    return count == 1 ? found : std::nullopt;
}

template <class Value> bool contains(const std::vector<Value>& values, std::optional<Value> value)
{
    return value && std::find(values.begin(), values.end(), *value) != values.end();
}

} // namespace

class ZlFilter::Expressions
{
public:
    explicit Expressions(const std::vector<std::string>& texts)
    {
        for (const std::string& text : texts)
        {
            const std::string fault = zlFaultOfExpression(text);
            if (!fault.empty()) throw ZlError(fault);
            _expressions.emplace_back(text, boost::regex::perl);
        }
    }

    bool isEmpty() const
    {
        return _expressions.empty();
    }

    // Raises std::runtime_error if the search takes too long.
    bool matchAny(std::string_view text) const
    {
        const auto matches = [text](const boost::regex& expression)
        { return boost::regex_search(text.data(), text.data() + text.size(), expression); };
        return std::any_of(_expressions.begin(), _expressions.end(), matches);
    }

private:
    std::vector<boost::regex> _expressions;
};

ZlFilter::ZlFilter(const ZlSelection& selection, ZlReports& reports)
    : _selection(selection), _reports(reports),
      _matches(std::make_unique<Expressions>(selection._matches)),
      _exclusions(std::make_unique<Expressions>(selection._exclusions)),
      _areEventsAlone(selection._areMarksHidden || selection._levels != ZlSelection::ALL_LEVELS ||
                      !selection._groups.empty() || !selection._threads.empty() ||
                      !_matches->isEmpty() || !_exclusions->isEmpty()),
      _isGroupFound(selection._groups.size())
{
}

ZlFilter::~ZlFilter() = default;

bool ZlFilter::accepts(const ZlRecord& record)
{
    const bool isEvent = zlIsEvent(record._kind);
    if (!isEvent && _areEventsAlone) return false;
    const bool isProcess =
        _selection._processes.empty() || contains(_selection._processes, record._process);
    if (!isProcess || (isEvent && !acceptsEvent(record))) return false;
    return acceptsTime(record);
}

bool ZlFilter::acceptsEvent(const ZlRecord& record)
{
    const bool isAnyLevel = _selection._levels == ZlSelection::ALL_LEVELS;
    if (!isAnyLevel && !(record._level && ((_selection._levels >> *record._level) & 1U) != 0))
        return false;
    if (!_selection._threads.empty() && !contains(_selection._threads, record._thread))
        return false;
    if (!_selection._groups.empty() && !acceptsGroup(record._group)) return false;
    if (_matches->isEmpty() && _exclusions->isEmpty()) return true;
    // The group and the text are neighbours.
    const std::string_view first = record._group.empty() ? record._text : record._group;
    const std::string_view text(
        first.data(),
        static_cast<std::size_t>(record._text.data() + record._text.size() - first.data()));
    try
    {
        return (_matches->isEmpty() || _matches->matchAny(text)) && !_exclusions->matchAny(text);
    }
    catch (const std::runtime_error&)
    {
        if (++_givenUp > MOST_GIVEN_UP)
            throw ZlError("the search for an expression took too long in " +
                          std::to_string(MOST_GIVEN_UP) + " lines, and is ended");
        _reports.wrongLine(*record._file, record._line,
                           "the search for an expression takes too long, and the line is shown");
        return true;
    }
}

bool ZlFilter::acceptsGroup(std::string_view group)
{
    if (group.empty()) return false;
    bool isAccepted = false;
    for (std::size_t i = 0; i < _selection._groups.size(); ++i)
    {
        if (isAccepted && _isGroupFound[i]) continue;
        if (!zlMatchesGlob(_selection._groups[i], group)) continue;
        isAccepted = true;
        _isGroupFound[i] = true;
    }
    if (!isAccepted) noteGroup(group);
    return isAccepted;
}

void ZlFilter::noteGroup(std::string_view group)
{
    constexpr std::size_t MOST = 10;
    constexpr std::size_t LONGEST = 64;
    if (_otherGroups.size() < MOST && group.size() <= LONGEST && !_otherGroups.contains(group))
        _otherGroups.emplace(group);
}

void ZlFilter::reportGroups() const
{
    std::string names;
    for (const std::string& name : _otherGroups)
    {
        names += names.empty() ? "" : ", ";
        zlAppendPrintable(names, name, false);
    }
    for (std::size_t i = 0; i < _isGroupFound.size(); ++i)
        if (!_isGroupFound[i])
            _reports.note("none of the events that were looked at is of the group \"" +
                          _selection._groups[i] + "\"" +
                          (names.empty() ? "" : "; there are " + names));
}

bool ZlFilter::acceptsTime(const ZlRecord& record)
{
    if (!_selection._since && !_selection._until) return true;
    if (!record._wall)
    {
        ++_undated;
        return false;
    }
    return (!_selection._since || *record._wall >= *_selection._since) &&
           (!_selection._until || *record._wall < *_selection._until);
}

void ZlFilter::report() const
{
    reportGroups();
    if (_undated == 0) return;
    _reports.note(std::to_string(_undated) + (_undated == 1
                                                  ? " record without a known time was left out"
                                                  : " records without a known time were left out"));
}

std::string zlFaultOfExpression(const std::string& text)
{
    try
    {
        const boost::regex expression(text, boost::regex::perl);
        return {};
    }
    catch (const boost::regex_error& error)
    {
        const std::string reason = error.what();
        // What follows the reason repeats the place.
        return "\"" + text + "\" is no regular expression, see character " +
               std::to_string(error.position() + 1) + ": " +
               reason.substr(0, reason.find_first_of(".\n"));
    }
}

// Goes back to the last "*" when what follows it does not fit.
bool zlMatchesGlob(std::string_view glob, std::string_view name)
{
    std::size_t place = 0;
    std::size_t at = 0;
    std::size_t star = std::string_view::npos;
    std::size_t afterStar = 0;
    while (at < name.size())
    {
        if (place < glob.size() && glob[place] == '*')
        {
            star = place++;
            afterStar = at;
        }
        else if (place < glob.size() && (glob[place] == '?' || glob[place] == name[at]))
        {
            ++place;
            ++at;
        }
        else if (star != std::string_view::npos)
        {
            place = star + 1;
            at = ++afterStar;
        }
        else
            return false;
    }
    while (place < glob.size() && glob[place] == '*') ++place;
    return place == glob.size();
}

std::optional<std::uint32_t> zlParseLevels(std::string_view text)
{
    const bool isExact = !text.empty() && text.front() == '=';
    if (isExact) text.remove_prefix(1);
    if (!isExact && text.find(',') == std::string_view::npos)
    {
        const auto level = levelOf(text);
        if (!level) return std::nullopt;
        return (2U << *level) - 1;
    }
    std::uint32_t levels = 0;
    for (;;)
    {
        const std::size_t end = std::min(text.find(','), text.size());
        const auto level = levelOf(text.substr(0, end));
        if (!level) return std::nullopt;
        levels |= 1U << *level;
        if (end == text.size()) return levels;
        text.remove_prefix(end + 1);
    }
}

} // namespace Zu
