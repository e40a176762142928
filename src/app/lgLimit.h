/// @file
/// Log statements that are executed more often than they shall write.

#ifndef ZU_APP_LGLIMIT_H
#define ZU_APP_LGLIMIT_H

#include "../base/lgEvent.h"
#include "../base/lgTypes.h"
#include "../base/xGlue.h"
#include "appApi.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace Zu
{

class LgStream;

/// What a limited log statement has written and left out; ZU_LOG_AT_MOST and ZU_LOG_EVERY define
/// one for each statement, which lasts as long as the process. A module with such statements must
/// not be unloaded.
///
/// The counts are exact, however many threads execute the statement: getWrittenCount() and
/// getLeftOutCount() together are the number of its executions, and each that was left out is
/// reported at most once. The child of a fork begins with the counts of its parent.
///
/// Thread-safety: any thread may make any call. Nothing locks, and nothing is allocated.
class LgLimit
{
public:
    /// How a statement is limited.
    enum class Kind : std::uint8_t
    {
        /// To a number of events per second.
        PerSecond,
        /// To one event of a number of executions.
        EveryNth
    };

    /// A limit to `number`, at least 1. The texts must outlive the process.
    constexpr LgLimit(Kind kind, std::uint32_t number, const char* file, int line,
                      const char* group)
        : _file(file), _group(group), _line(line), _number(number), _kind(kind)
    {
    }

    LgLimit(const LgLimit&) = delete;
    LgLimit& operator=(const LgLimit&) = delete;

    /// Counts an execution now, and returns whether the statement shall write. The level of the
    /// first execution is that of the statement.
    ZU_APP_API bool letsThrough(LgTypes::Level level);

    /// The same for an execution in the second of this number. A second that is not later than the
    /// latest one counts as that one.
    ZU_APP_API bool letsThroughIn(std::uint64_t second, LgTypes::Level level);

    /// How many executions were left out since the last call, which are thereby reported.
    ZU_APP_API std::uint64_t takeLeftOut();

    /// @{
    /// Where the statement is, its group, its level, and its limit.
    const char* getFile() const
    {
        return _file;
    }

    int getLine() const
    {
        return _line;
    }

    const char* getGroup() const
    {
        return _group;
    }

    LgTypes::Level getLevel() const
    {
        return _level;
    }

    Kind getKind() const
    {
        return _kind;
    }

    std::uint32_t getNumber() const
    {
        return _number;
    }
    /// @}

    /// How many executions were let through. If a queue has no room for such an event, it is lost
    /// like any other event.
    ZU_APP_API std::uint64_t getWrittenCount() const;

    /// How many executions were left out.
    ZU_APP_API std::uint64_t getLeftOutCount() const;

    /// How many of those are not reported yet.
    ZU_APP_API std::uint64_t getOwedCount() const;

    /// Called with a limit.
    using Visitor = std::function<void(LgLimit& limit)>;

    /// Visits the limits of all statements that were executed with an enabled level, the latest
    /// one first. Raises what the visitor raises.
    ZU_APP_API static void visitAll(const Visitor& visitor);

private:
    bool isWithinSecond(std::uint64_t second);
    bool isNth();
    bool count(bool isWritten, LgTypes::Level level);
    void enlist(LgTypes::Level level);

    const char* _file;
    const char* _group;
    int _line;
    std::uint32_t _number;
    Kind _kind;
    LgTypes::Level _level = LgTypes::Warning;
    LgLimit* _next = nullptr;
    std::atomic<bool> _isListed{false};
    // Per second: the second in the high 32 bits, how many were let through in it in the low ones.
    // Every nth: the number of executions.
    std::atomic<std::uint64_t> _state{0};
    std::atomic<std::uint64_t> _written{0};
    std::atomic<std::uint64_t> _leftOut{0};
    std::atomic<std::uint64_t> _reported{0};
};

/// The last operand of a limited statement: " (12 left out)" if the statement left out something
/// since its last line. It takes the count when the event has room in its queue, so that an event
/// that is lost does not take it along.
class LgLeftOut
{
public:
    /// The limit must outlive the object.
    explicit LgLeftOut(LgLimit& limit) : _limit(&limit) {}

    /// Inserts the text.
    ZU_APP_API void insertInto(LgStream& stream) const;

private:
    LgLimit* _limit;
};

/// Inserts what was left out.
inline LgStream& operator<<(LgStream& stream, const LgLeftOut& leftOut)
{
    leftOut.insertInto(stream);
    return stream;
}

} // namespace Zu

/// Logs like ZU_LOG, but at most `number` events per second, a constant of at least 1:
///
///     ZU_LOG_AT_MOST(Orders, ::Zu::LgTypes::Warning, 5, "order " << order << " is late");
///
/// Seconds are those of HwCounter, and do not overlap: the first `number` executions in each second
/// are written, the others are left out. A burst across the end of a second can thus write twice
/// the number within less than a second. The next line says how many were left out, " (12 left
/// out)" at its end. The limit is that of this statement and of the process, not of a thread; each
/// instance of a template has its own.
///
/// If the group does not let the level through, nothing is counted and it costs what ZU_LOG costs.
/// An execution that is left out evaluates no operand. LgLimit::visitAll() and
/// LgServiceHealth have the counts; when the service ends, each statement whose last executions
/// were left out writes one line.
#define ZU_LOG_AT_MOST(group, level, number, ...)                                                  \
    ZU_LOG_LIMITED(group, level, PerSecond, number, __VA_ARGS__)

/// Logs like ZU_LOG, but only every `number`th execution, a constant of at least 1: with 100 the
/// first one, the 101st and so on. The rest is that of ZU_LOG_AT_MOST; the clock is not read.
#define ZU_LOG_EVERY(group, level, number, ...)                                                    \
    ZU_LOG_LIMITED(group, level, EveryNth, number, __VA_ARGS__)

/// A limited statement. Its variables have the same names everywhere, so that an inline function
/// with such a statement is the same in all translation units.
#define ZU_LOG_LIMITED(group, level, kind, number, ...)                                            \
    do                                                                                             \
    {                                                                                              \
        static_assert((number) >= 1, "the limit of a log statement is at least 1");                \
        const ::Zu::LgTypes::Level zuLimitLevel = level;                                           \
        const ::Zu::LgEvent zuLimitEvent(ZU_XGLUE(MinorLevel, group), zuLimitLevel);               \
        if (zuLimitEvent.isEnabled())                                                              \
        {                                                                                          \
            static ::Zu::LgLimit zuLimit(::Zu::LgLimit::Kind::kind, number, __FILE__, __LINE__,    \
                                         #group);                                                  \
            if (zuLimit.letsThrough(zuLimitLevel))                                                 \
                zuLimitEvent.write(::Zu::LgParts() << __VA_ARGS__ << ::Zu::LgLeftOut(zuLimit),     \
                                   __FILE__, __LINE__);                                            \
        }                                                                                          \
    } while (false)

#endif
