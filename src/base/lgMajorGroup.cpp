#include "base/lgMajorGroup.h"

#include "base/assertions.h"
#include "base/duplicateString.h"
#include "base/lgEx.h"
#include "base/streamFormat.h"
#include "base/textTokens.h"

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <list>
#include <map>
#include <mutex>
#include <string>

namespace Zu
{

namespace
{

// Copies of the groups' names, in order of first use, and the groups by those copies. Both exist
// from initialize() to finalize().
using Names = std::list<ArrayPtr<char>>;
using MajorGroups = std::map<const char*, LgMajorGroup*, LessByBytes>;

// The groups themselves live until the end of the process, one for each name: a minor group may
// outlive finalize(), and when the logger starts again it belongs to the group of that name.
struct KeptGroup
{
    LgMajorGroup _group;
    // Since the logger started.
    bool _isUsed = false;
};
using KeptGroups = std::map<std::string, KeptGroup, std::less<>>;

KeptGroups& keptGroups()
{
    static KeptGroups* const theGroups = new KeptGroups;
    return *theGroups;
}

// How both variables are used. Only for people who read the strings in the binary; no code uses it.
[[maybe_unused, gnu::used]] constexpr const char* USAGE_OF_DEFAULT_LEVEL =
    "setenv ZU_LOG_DEFAULT_LEVEL Tracing";
[[maybe_unused, gnu::used]] constexpr const char* USAGE_OF_GROUPS =
    "setenv ZU_LOG_GROUPS Database=Warning,UI=Informational,Radiosity=Profiling";

Names* names = nullptr;
MajorGroups* majorGroups = nullptr;
// Held while these are used or changed.
std::mutex mutex;

const char* nameCopy(const char* name)
{
    for (const ArrayPtr<char>& copy : *names)
        if (std::strcmp(copy.get(), name) == 0) return copy.get();
    names->emplace_back(duplicateString(name));
    return names->back().get();
}

KeptGroup& findOrMake(const char* name)
{
    ZU_ASSERT(names);
    ZU_ASSERT(majorGroups);
    KeptGroup& kept = keptGroups()[name];
    if (majorGroups->count(name) > 0) return kept;
    majorGroups->emplace(nameCopy(name), &kept._group);
    kept = {};
    return kept;
}

LgTypes::Level atLeastFatal(LgTypes::Level level)
{
    return std::max(level, LgTypes::FatalError);
}

} // namespace

LgTypes::Level LgMajorGroup::_defaultThreshold = LgTypes::Warning;

const std::uint32_t LgMajorGroup::_levelMask[] = {0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0x02};

LgMajorGroup::LgMajorGroup() : _levels(_levelMask[_defaultThreshold]) {}

LgMajorGroup::LgMajorGroup(const LgMajorGroup& other) : _levels(other.getLogLevels()) {}

LgMajorGroup& LgMajorGroup::operator=(const LgMajorGroup& other)
{
    _levels.store(other.getLogLevels(), std::memory_order_relaxed);
    return *this;
}

void LgMajorGroup::setLogThreshold(LgTypes::Level level, bool clearProfiling)
{
    ZU_ASSERT_TEXT(level >= 0 && level < LgTypes::NUM_LEVELS, "l < NUM_LEVELS");
    const std::uint32_t profiling = LgTypes::levelBit[LgTypes::Profiling];
    std::uint32_t mask = getLogLevels();
    if (level == LgTypes::Profiling)
        mask |= profiling;
    else
        mask = _levelMask[atLeastFatal(level)] | (clearProfiling ? 0 : mask & profiling);
    _levels.store(mask, std::memory_order_relaxed);
}

LgTypes::Level LgMajorGroup::getDefaultThreshold()
{
    return _defaultThreshold;
}

void LgMajorGroup::setDefaultThreshold(LgTypes::Level level)
{
    ZU_ASSERT_TEXT(level >= 0 && level < LgTypes::NUM_LEVELS, "l < NUM_LEVELS");
    _defaultThreshold = atLeastFatal(level);
}

std::uint32_t LgMajorGroup::getLevelMask(LgTypes::Level level)
{
    return _levelMask[level];
}

LgMajorGroup& LgMajorGroup::getInstanceForName(const char* name)
{
    const std::lock_guard guard(mutex);
    KeptGroup& kept = findOrMake(name);
    kept._isUsed = true;
    return kept._group;
}

bool LgMajorGroup::isUsed(const char* name)
{
    const std::lock_guard guard(mutex);
    if (!majorGroups || !name || majorGroups->count(name) == 0) return false;
    return keptGroups()[name]._isUsed;
}

void LgMajorGroup::parse(const char* text)
{
    ZU_ASSERT(names);
    ZU_ASSERT(majorGroups);
    const ArrayPtr<char> copy(duplicateString(text));
    char* position = copy.get();
    while (const char* const name = nextToken(position, '='))
    {
        try
        {
            // The level is converted first, so that a bad pair creates no group.
            const LgTypes::Level level = LgTypes::stringToLevel(nextToken(position, ','));
            const std::lock_guard guard(mutex);
            findOrMake(name)._group.setLogThreshold(level, false);
        }
        catch (const LgEx::InvalidLevelString& exception)
        {
            std::cout << exception.getReason() << std::endl;
        }
    }
}

void LgMajorGroup::initialize(const char* text)
{
    {
        const std::lock_guard guard(mutex);
        ZU_ASSERT(!names);
        ZU_ASSERT(!majorGroups);
        names = new Names;
        majorGroups = new MajorGroups;
        for (auto& [name, kept] : keptGroups()) kept = {};
    }
    if (text) parse(text);
}

void LgMajorGroup::finalize()
{
    const std::lock_guard guard(mutex);
    ZU_ASSERT(names);
    ZU_ASSERT(majorGroups);
    delete majorGroups;
    majorGroups = nullptr;
    delete names;
    names = nullptr;
}

void LgMajorGroup::visitAll(const Visitor& visitor)
{
    const std::lock_guard guard(mutex);
    if (!majorGroups) return;
    for (const auto& [name, group] : *majorGroups) visitor(name, *group);
}

void LgMajorGroup::printAll(std::ostream& out)
{
    const std::lock_guard guard(mutex);
    ZU_ASSERT(majorGroups);
    StreamFormat format(out);
    const char fill = out.fill();
    format.setPlain();
    out.fill(fill);
    out << std::right << "Major Groups:\n";
    for (const auto& [name, group] : *majorGroups)
    {
        const std::uint32_t mask = group->getLogLevels();
        out << std::setw(24) << name << " ";
        for (int level = LgTypes::Tracing; level >= LgTypes::FatalError; --level)
        {
            if ((mask & _levelMask[level]) == 0) continue;
            out << LgTypes::levelToString(static_cast<LgTypes::Level>(level));
            break;
        }
        if (mask & LgTypes::levelBit[LgTypes::Profiling])
            out << ", "
                << "Profiling";
        out << "\n";
    }
}

} // namespace Zu
