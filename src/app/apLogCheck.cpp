#include "app/apLogCheck.h"

#include "app/apNearest.h"
#include "app/apText.h"
#include "base/lgTypes.h"

#include <algorithm>
#include <cstddef>

namespace Zu
{

namespace
{

std::vector<std::string> levels()
{
    std::vector<std::string> names;
    names.reserve(LgTypes::NUM_LEVELS);
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
        names.emplace_back(LgTypes::levelToString(static_cast<LgTypes::Level>(level)));
    return names;
}

bool contains(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The name is followed by "=" and a level.
struct Pair
{
    std::string _name;
    std::string _level;
    bool _hasLevel = false;
};

// One comma may end the text. Any other piece that is empty would become part of the next name.
std::vector<Pair> pairsOf(std::string_view value)
{
    std::vector<Pair> pairs;
    while (!value.empty())
    {
        const std::string_view piece = value.substr(0, value.find(','));
        value.remove_prefix(std::min(piece.size() + 1, value.size()));
        const std::size_t equals = piece.find('=');
        Pair pair{std::string(piece.substr(0, equals)), {}, false};
        if (equals != std::string_view::npos) pair._level = piece.substr(equals + 1);
        pair._hasLevel = !pair._level.empty();
        pairs.push_back(pair);
    }
    return pairs;
}

std::string noLevel(const std::string& variable, const std::string& text)
{
    const std::vector<std::string> known = levels();
    const std::string meant = apDidYouMean(text, known);
    return variable + ": '" + text + "' is not a level" +
           (meant.empty() ? "; the levels are " + apJoined(known) : meant);
}

} // namespace

std::string apGroupsError(std::string_view value)
{
    for (const Pair& pair : pairsOf(value))
    {
        if (!pair._name.empty() && pair._hasLevel) continue;
        return "ZU_LOG_GROUPS is '" + std::string(value) + "', where " +
               (pair._name.empty() ? "a group has no name" : "'" + pair._name + "' has no level") +
               ": expected GROUP=LEVEL,GROUP=LEVEL... with the levels " + apJoined(levels());
    }
    return {};
}

std::vector<std::string> apGroupsNotes(std::string_view value, const std::vector<std::string>& used)
{
    const std::string variable = "ZU_LOG_GROUPS";
    std::vector<std::string> notes;
    for (const Pair& pair : pairsOf(value))
    {
        if (!contains(levels(), pair._level)) notes.push_back(noLevel(variable, pair._level));
        if (contains(used, pair._name)) continue;
        const std::string meant = apDidYouMean(pair._name, used);
        notes.push_back(variable + ": no statement belongs to the group '" + pair._name + "'" +
                        (meant.empty() ? "; the groups are " + apJoined(used) : meant));
    }
    return notes;
}

std::string apDefaultLevelNote(std::string_view value)
{
    if (contains(levels(), std::string(value))) return {};
    return noLevel("ZU_LOG_DEFAULT_LEVEL", std::string(value));
}

} // namespace Zu
