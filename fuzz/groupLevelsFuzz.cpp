// Lines: the text of the default level, and texts that set levels of groups.

#include "base/exInternalError.h"
#include "base/lgEx.h"
#include "base/lgMajorGroup.h"
#include "base/lgTypes.h"

#include "fuzzTarget.h"
#include "support/streamCapture.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>
#include <string>

namespace
{

using Zu::LgMajorGroup;
namespace LgTypes = Zu::LgTypes;

using Masks = std::map<std::string, std::uint32_t>;

constexpr std::uint32_t PROFILING = 1U << 1;

// Limits the groups of the process to one input.
struct Groups
{
    Groups()
    {
        LgMajorGroup::setDefaultThreshold(LgTypes::Warning);
        LgMajorGroup::initialize(nullptr);
    }

    ~Groups()
    {
        LgMajorGroup::finalize();
        LgMajorGroup::setDefaultThreshold(LgTypes::Warning);
    }
};

std::optional<LgTypes::Level> levelOf(const std::string& text)
{
    const std::string names[] = {"Internal Error", "Fatal Error", "Error",    "Warning",
                                 "Informational",  "Tracing",     "Profiling"};
    const auto found = std::find(std::begin(names), std::end(names), text);
    if (found == std::end(names)) return std::nullopt;
    return static_cast<LgTypes::Level>(found - std::begin(names));
}

// The bits from the highest one down to that of the level, at least two.
std::uint32_t maskOf(LgTypes::Level level)
{
    if (level == LgTypes::Profiling) return PROFILING;
    const int bits = std::max(level + 1, 2);
    return 0xFFU << (8 - bits) & 0xFFU;
}

// The next piece; leading separators are skipped.
std::optional<std::string> takePiece(std::string& text, char separator)
{
    const std::size_t begin = text.find_first_not_of(separator);
    if (begin == std::string::npos) return std::nullopt;
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    const std::string piece = text.substr(begin, end - begin);
    text.erase(0, end + 1);
    return piece;
}

// The effect of a text on the groups, and the messages about it; false if a pair has no level.
bool parse(std::string text, std::uint32_t defaultMask, Masks& masks, std::string& told)
{
    while (const std::optional<std::string> name = takePiece(text, '='))
    {
        const std::optional<std::string> levelText = takePiece(text, ',');
        if (!levelText) return false;
        const std::optional<LgTypes::Level> level = levelOf(*levelText);
        if (!level)
        {
            // A reason holds 1,023 characters.
            told += ("Invalid level string specified: " + *levelText).substr(0, 1023) + "\n";
            continue;
        }
        std::uint32_t& mask = masks.emplace(*name, defaultMask).first->second;
        mask = maskOf(*level) | (*level == LgTypes::Profiling ? mask : mask & PROFILING);
    }
    return true;
}

std::optional<LgTypes::Level> libraryLevelOf(const std::string& text)
{
    try
    {
        const LgTypes::Level level = LgTypes::stringToLevel(fuzz::exactCopy(text).get());
        FUZZ_REQUIRE(LgTypes::levelToString(level) == text);
        return level;
    }
    catch (const Zu::LgEx::InvalidLevelString&)
    {
        return std::nullopt;
    }
}

bool libraryParses(const std::string& text)
{
    try
    {
        LgMajorGroup::parse(fuzz::exactCopy(text).get());
        return true;
    }
    catch (const Zu::ExInternalError& exception)
    {
        FUZZ_REQUIRE(exception.getReason() == std::string("Assertion 's' failed."));
        return false;
    }
}

std::string listOf(const Masks& masks)
{
    std::string list = "Major Groups:\n";
    for (const auto& [name, mask] : masks)
    {
        list += std::string(24 - std::min<std::size_t>(name.size(), 24), ' ') + name + " ";
        // Only a group with just Profiling lacks the levels that can't be switched off.
        if (mask != PROFILING) list += "Tracing";
        list += (mask & PROFILING) != 0 ? ", Profiling\n" : "\n";
    }
    return list;
}

void run(fuzz::Input input)
{
    const Groups groups;
    std::uint32_t defaultMask = maskOf(LgTypes::Warning);
    const std::string defaultText = input.takeLine();
    const std::optional<LgTypes::Level> defaultLevel = levelOf(defaultText);
    FUZZ_REQUIRE(libraryLevelOf(defaultText) == defaultLevel);
    if (defaultLevel)
    {
        LgMajorGroup::setDefaultThreshold(*defaultLevel);
        defaultMask = maskOf(*defaultLevel);
    }

    Masks masks;
    std::string told;
    const support::StreamCapture capture(std::cout);
    for (const std::string& text : input.takeLines())
        FUZZ_REQUIRE(libraryParses(text) == parse(text, defaultMask, masks, told));
    FUZZ_REQUIRE(capture.text() == told);

    std::ostringstream list;
    LgMajorGroup::printAll(list);
    FUZZ_REQUIRE(list.str() == listOf(masks));
    for (const auto& [name, mask] : masks)
        FUZZ_REQUIRE(LgMajorGroup::getInstanceForName(name.c_str()).getLogLevels() == mask);
}

} // namespace

FUZZ_TARGET(groupLevels, run);
