/// @file
/// Named, process-wide records of which log levels are enabled.

#ifndef ZU_BASE_LGMAJORGROUP_H
#define ZU_BASE_LGMAJORGROUP_H

#include "baseApi.h"
#include "lgTypes.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <iosfwd>

namespace Zu
{

/// Which levels of a group are enabled. The groups of the process are found by name and configured
/// from a text such as "Database=Warning,UI=Informational,Radiosity=Profiling".
///
/// A broken rule, such as a request for a group before initialize(), raises ExInternalError
/// "Assertion '...' failed."
///
/// Thread-safety: groups are parsed and ended during start-up and shut-down, on one thread. Any
/// thread may find, create and visit groups meanwhile, and read and set the mask of a group at any
/// time; a reader that races with a change sees either the old mask or the new one.
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

    /// The mask of the enabled levels, made of bits from LgTypes::levelBit.
    std::uint32_t getLogLevels() const
    {
        return _levels.load(std::memory_order_relaxed);
    }

    /// Switches on the levels from the most severe one to `level` and the others off. Profiling
    /// keeps its state unless `clearProfiling` is set. If `level` is Profiling, that level is
    /// switched on and nothing else changes. Internal Error and Fatal Error deliberately can't be
    /// switched off: the lowest threshold is Fatal Error. Asserts "l < NUM_LEVELS".
    void setLogThreshold(LgTypes::Level level, bool clearProfiling);

    /// The threshold of groups that are not configured; Warning unless set.
    static LgTypes::Level getDefaultThreshold();

    /// Sets the threshold of groups that are created from now on. A level below Fatal Error is
    /// raised to Fatal Error. With Profiling, such groups have only that level. Asserts
    /// "l < NUM_LEVELS".
    static void setDefaultThreshold(LgTypes::Level level);

    /// The mask of a threshold; `level` is not checked.
    static std::uint32_t getLevelMask(LgTypes::Level level);

    /// The group of this name, created with the default threshold if there is none. The name is
    /// copied. The reference stays valid until the process ends: see finalize(). Asserts "names"
    /// and "majorGroups".
    static LgMajorGroup& getInstanceForName(const char* name);

    /// Whether getInstanceForName() was called for this name since initialize(). A group that only
    /// a text has configured is not used: no statement belongs to it. False for null.
    static bool isUsed(const char* name);

    /// Sets the thresholds that the text lists, "group=level,group=level...". A text that is not a
    /// level is reported on standard output and its pair skipped. A pair without a level asserts
    /// "s".
    static void parse(const char* text);

    /// Starts with no groups, then creates those that the text lists unless it is null. Asserts
    /// "!names" and "!majorGroups".
    static void initialize(const char* text);

    /// Ends all groups: no name is registered any more. Their objects remain, each with its mask,
    /// since minor groups may still query them. The next initialize() gives them the mask of a new
    /// group, and a request for the same name returns the same object. Asserts "names" and
    /// "majorGroups".
    static void finalize();

    /// Called with a group and its name, which stays valid until finalize().
    using Visitor = std::function<void(const char* name, LgMajorGroup& group)>;

    /// Visits the groups in byte order of their names; none before initialize() and after
    /// finalize(). For tools that show and set the levels of a process while it runs. Groups can't
    /// be found, created or ended by the visitor.
    static void visitAll(const Visitor& visitor);

    /// Writes the groups in byte order of their names. The word for the threshold is deliberately
    /// that of the first level, from Tracing down, whose mask shares any bit with the group's.
    /// Because two levels can't be switched off, that is always "Tracing".
    static void printAll(std::ostream& out);

private:
    static LgTypes::Level _defaultThreshold;
    static const std::uint32_t _levelMask[LgTypes::NUM_LEVELS];

    std::atomic<std::uint32_t> _levels;
};

} // namespace Zu

#endif
