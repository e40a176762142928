/// @file
/// Named, process-wide records of which log levels are on.

#ifndef ZU_BASE_LGMAJORGROUP_H
#define ZU_BASE_LGMAJORGROUP_H

#include "baseApi.h"
#include "lgTypes.h"

#include <atomic>
#include <cstdint>
#include <iosfwd>

namespace Zu
{

/// Which levels of a group are on. The groups of the process are found by name and configured from
/// a text such as "Database=Warning,UI=Informational,Radiosity=Profiling".
///
/// A broken rule, such as a group asked for before initialize(), raises ExInternalError
/// "Assertion '...' failed."
///
/// Thread-safety: groups are found, parsed, made and ended in start-up and shut-down, on one
/// thread. The mask of a group may be read and set by any thread at any time; a reader that races
/// with a change sees the old mask or the new one.
class ZU_BASE_API LgMajorGroup
{
public:
    /// A group with the mask of the default threshold.
    LgMajorGroup();

    /// @{
    /// Copies the mask.
    LgMajorGroup(const LgMajorGroup& other);
    LgMajorGroup& operator=(const LgMajorGroup& other);
    /// @}

    /// The bits of LgTypes::levelBit of the levels that are on.
    std::uint32_t getLogLevels() const
    {
        return _levels.load(std::memory_order_relaxed);
    }

    /// Switches on the levels from the most severe one to `level`, and the others off; Profiling
    /// keeps its state unless `clearProfiling`. With the level Profiling that level is switched on
    /// and nothing else changes. Deliberately Internal Error and Fatal Error can't be switched off:
    /// the lowest threshold is Fatal Error. Asserts "l < NUM_LEVELS".
    void setLogThreshold(LgTypes::Level level, bool clearProfiling);

    /// The threshold of groups that nobody configures; Warning unless it was set.
    static LgTypes::Level getDefaultThreshold();

    /// Sets the threshold of groups that are made from now on; a level below Fatal Error is raised
    /// to that. With Profiling such groups have that level alone. Asserts "l < NUM_LEVELS".
    static void setDefaultThreshold(LgTypes::Level level);

    /// The mask of a threshold; `level` is not checked.
    static std::uint32_t getLevelMask(LgTypes::Level level);

    /// The group of this name, made with the default threshold if there is none; the name is
    /// copied. The reference is good for ever: see finalize(). Asserts "names" and "majorGroups".
    static LgMajorGroup& getInstanceForName(const char* name);

    /// Sets the thresholds that the text names, "group=level,group=level...". A text that is no
    /// level is told on standard output and its pair skipped; a pair without a level asserts "s".
    static void parse(const char* text);

    /// Begins without any group, and makes those that the text names unless it is null. Asserts
    /// "!names" and "!majorGroups".
    static void initialize(const char* text);

    /// Ends all groups: no name is known any more. Their objects stay, each with its mask, since
    /// minor groups may still ask them. The next initialize() gives them the mask of a new group,
    /// and who asks for the name gets the same object. Asserts "names" and "majorGroups".
    static void finalize();

    /// Writes the groups in byte order of their names. The word for the threshold is deliberately
    /// that of the first level, from Tracing down, whose mask shares any bit with the group's: with
    /// the levels that can't be switched off it is always "Tracing".
    static void printAll(std::ostream& out);

private:
    static LgTypes::Level _defaultThreshold;
    static const std::uint32_t _levelMask[LgTypes::NUM_LEVELS];

    std::atomic<std::uint32_t> _levels;
};

} // namespace Zu

#endif
