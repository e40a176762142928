/// @file
/// Log statements, and the groups that they belong to.

#ifndef ZU_BASE_LGEVENT_H
#define ZU_BASE_LGEVENT_H

#include "assertions.h"
#include "baseApi.h"
#include "lgLog.h"
#include "lgMajorGroup.h"
#include "lgMinorGroup.h"
#include "lgQueue.h"
#include "lgStream.h"
#include "lgTypes.h"
#include "xGlue.h"

#include <iosfwd>
#include <type_traits>
#include <utility>

namespace Zu
{

/// The operands of a log statement, `LgParts() << "text" << number`, kept by reference to be
/// inserted later. An operand that itself logs something, such as a function call, has thus done so
/// before the event begins. Lives no longer than the statement.
class LgParts
{
public:
    /// Inserts nothing: there are no operands yet.
    void insertInto(LgStream&) const {}
};

/// @{
/// Whether LgStream has an insertion operator for a type, among the headers included.
template <class T, class = void> inline constexpr bool lgIsInsertable = false;
template <class T>
inline constexpr bool lgIsInsertable<
    T, std::void_t<decltype(std::declval<LgStream&>() << std::declval<const T&>())>> = true;
/// @}

/// One operand and the parts before it.
template <class Before, class Part> class LgMoreParts
{
public:
    /// Copies the parts before; an operand that is a reference stays one.
    LgMoreParts(const Before& before, Part part) : _before(before), _part(part) {}

    /// Inserts all operands, the first one first.
    void insertInto(LgStream& stream) const
    {
        _before.insertInto(stream);
        // An operand that can't be inserted has already failed a static assertion in operator<<.
        if constexpr (lgIsInsertable<std::remove_reference_t<Part>>) stream << _part;
    }

private:
    Before _before;
    Part _part;
};

/// @{
/// Whether a type represents the operands of a log statement.
template <class T> inline constexpr bool lgIsParts = false;
template <> inline constexpr bool lgIsParts<LgParts> = true;
template <class Before, class Part>
inline constexpr bool lgIsParts<LgMoreParts<Before, Part>> = true;
/// @}

/// Numbers are kept by value, so that a constant without storage can be an operand.
template <class T>
using LgKeptPart =
    std::conditional_t<std::is_arithmetic_v<T> || std::is_enum_v<T>, const T, const T&>;

/// A log statement takes no manipulators of standard streams, such as `std::endl`.
template <class Before, class = std::enable_if_t<lgIsParts<Before>>>
void operator<<(const Before& before, std::ostream& (*manipulator)(std::ostream&)) = delete;

/// @{
/// Appends one more operand to those of a log statement.
template <class Before, class T, class = std::enable_if_t<lgIsParts<Before>>,
          class = std::enable_if_t<!std::is_arithmetic_v<T> && !std::is_enum_v<T>>>
LgMoreParts<Before, LgKeptPart<T>> operator<<(const Before& before, const T& part)
{
    static_assert(!std::is_function_v<T>,
                  "a log statement takes no manipulators: it ends its text itself, and lgFormat.h "
                  "has other forms of numbers");
    static_assert(lgIsInsertable<T>,
                  "LgStream has no insertion operator for this type; lgStdText.h "
                  "and lgBaseText.h have some");
    return {before, part};
}

template <class Before, class T, class = std::enable_if_t<lgIsParts<Before>>,
          class = std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>>, class = void>
LgMoreParts<Before, LgKeptPart<T>> operator<<(const Before& before, T part)
{
    static_assert(lgIsInsertable<T>,
                  "LgStream has no insertion operator for this type; lgStdText.h "
                  "and lgBaseText.h have some");
    return {before, part};
}
/// @}

/// The insertion of one event's text into its queue. If an exception of an operand's insertion
/// operator ends it early, the event is withdrawn.
class LgInsertion
{
public:
    /// Begins the insertion for the event that the queue has reserved.
    explicit LgInsertion(LgQueue& queue) : _queue(&queue)
    {
        _queue->beginInsertion();
    }

    LgInsertion(const LgInsertion&) = delete;
    LgInsertion& operator=(const LgInsertion&) = delete;

    ~LgInsertion()
    {
        if (_queue) _queue->cancelInsertion();
    }

    /// Publishes the event.
    void complete()
    {
        // From here on there is nothing to withdraw, whatever the observer does.
        LgQueue& queue = *_queue;
        _queue = nullptr;
        queue.endInsertion();
    }

    /// The same for a statement in this file and line; see LgQueue::setSuffixFunction().
    void complete(const char* file, int line)
    {
        LgQueue& queue = *_queue;
        _queue = nullptr;
        queue.endInsertion(file, line);
    }

private:
    LgQueue* _queue;
};

/// One line for standard output, with the same bytes as an event's text.
class ZU_BASE_API LgDirectLine
{
public:
    /// The stream that receives the text of the line.
    LgStream& getStream();

    /// Writes the line.
    void write();

private:
    LgStream _stream;
};

/// One log statement in progress; see ZU_LOG.
class LgEvent
{
public:
    /// Raises ExInternalError "Assertion 'minor' failed." for a group that was not started.
    LgEvent(const LgMinorGroup* minor, LgTypes::Level level) : _minor(minor), _level(level)
    {
        ZU_ASSERT(minor);
    }

    /// Whether the group lets the level through.
    bool isEnabled() const
    {
        return _minor->isLevelEnabled(_level);
    }

    /// Logs the group's name, a blank and the parts of a statement in this file and line. The
    /// suffix of LgQueue::setSuffixFunction() stands behind them.
    template <class Parts> void write(const Parts& parts, const char* file, int line) const
    {
        if (LgLog::isLoggerActive())
            writeToQueue(LgLog::getQueue(), parts, file, line);
        else if (LgLog::isInactiveOutputAllowed(_level))
            writeDirectly(parts, file, line);
    }

private:
    template <class Parts>
    void writeToQueue(LgQueue& queue, const Parts& parts, const char* file, int line) const
    {
        if (!queue.reserveEntry(_level)) return;
        LgInsertion insertion(queue);
        insertInto(queue.getStream(), parts);
        insertion.complete(file, line);
    }

    template <class Parts> void writeDirectly(const Parts& parts, const char* file, int line) const
    {
        LgDirectLine direct;
        insertInto(direct.getStream(), parts);
        LgQueue::insertSuffix(direct.getStream(), file, line);
        direct.write();
    }

    template <class Parts> void insertInto(LgStream& stream, const Parts& parts) const
    {
        _minor->insertName(stream);
        parts.insertInto(stream);
    }

    const LgMinorGroup* _minor;
    LgTypes::Level _level;
};

} // namespace Zu

/// Declares a minor group in a header, so that several source files can log to it. This macro and
/// the next are used outside functions, in the namespace of the subsystem.
#define ZU_DECLARE_LOG_GROUP(name)                                                                 \
    inline namespace LgGroups                                                                      \
    {                                                                                              \
    extern ::Zu::LgMinorGroup* ZU_XGLUE(MinorLevel, name);                                         \
    }                                                                                              \
    static_assert(true)

/// Defines a minor group in one source file. A group that only this file logs to needs no
/// declaration.
#define ZU_DEFINE_LOG_GROUP(name)                                                                  \
    ZU_DECLARE_LOG_GROUP(name);                                                                    \
    inline namespace LgGroups                                                                      \
    {                                                                                              \
    ::Zu::LgMinorGroup* ZU_XGLUE(MinorLevel, name) = nullptr;                                      \
    }                                                                                              \
    static_assert(true)

/// Starts a minor group of the major group named by the text `major`. For the start-up of the
/// subsystem's package, which must depend on "logger". A group that has already been started raises
/// ExInternalError "Assertion 'LgGroups::ZU_XGLUE( MinorLevel, <name> ) == 0' failed."
#define ZU_START_LOG_GROUP(major, name)                                                            \
    (ZU_ASSERT_TEXT(ZU_XGLUE(MinorLevel, name) == nullptr,                                         \
                    "LgGroups::ZU_XGLUE( MinorLevel, " #name " ) == 0"),                           \
     static_cast<void>(ZU_XGLUE(MinorLevel, name) = new ::Zu::LgMinorGroup(                        \
                           ::Zu::LgMajorGroup::getInstanceForName(major), #name)))

/// Ends a minor group. For the shut-down of the subsystem's package. A group that was not started
/// raises ExInternalError "Assertion 'LgGroups::ZU_XGLUE( MinorLevel, <name> ) != 0' failed."
#define ZU_STOP_LOG_GROUP(name)                                                                    \
    (ZU_ASSERT_TEXT(ZU_XGLUE(MinorLevel, name) != nullptr,                                         \
                    "LgGroups::ZU_XGLUE( MinorLevel, " #name " ) != 0"),                           \
     delete ZU_XGLUE(MinorLevel, name), static_cast<void>(ZU_XGLUE(MinorLevel, name) = nullptr))

/// Logs an event of a level to a minor group: ZU_LOG(Query, level, "took " << seconds << " s"). If
/// the group does not let the level through, no operand is evaluated. While the logger is inactive
/// the text goes to standard output, except for level Profiling.
///
/// An operand may be anything that LgStream has an insertion operator for; a client's own operator
/// is found in the namespace of its type. While the logger is active, an event that such an
/// operator logs itself is lost; one that is logged while an operand is evaluated is not. After an
/// exception no part of the event remains.
///
/// A group that was not started raises ExInternalError "Assertion 'minor' failed."
#define ZU_LOG(group, level, ...)                                                                  \
    ZU_LOG_NAMED(ZU_XGLUE(zuEvent, __COUNTER__), group, level, __VA_ARGS__)

/// ZU_LOG with the name of the variable that it defines. Each statement needs a name of its own,
/// since it may be nested in an operand of another one.
#define ZU_LOG_NAMED(event, group, level, ...)                                                     \
    do                                                                                             \
    {                                                                                              \
        const ::Zu::LgEvent event(ZU_XGLUE(MinorLevel, group), level);                             \
        if (event.isEnabled()) event.write(::Zu::LgParts() << __VA_ARGS__, __FILE__, __LINE__);    \
    } while (false)

/// @{
/// ZU_LOG for one level each: ZU_LOG_WARNING(Query, "took " << seconds << " s").
#define ZU_LOG_INTERNAL_ERROR(group, ...) ZU_LOG(group, ::Zu::LgTypes::InternalError, __VA_ARGS__)
#define ZU_LOG_FATAL_ERROR(group, ...) ZU_LOG(group, ::Zu::LgTypes::FatalError, __VA_ARGS__)
#define ZU_LOG_ERROR(group, ...) ZU_LOG(group, ::Zu::LgTypes::Error, __VA_ARGS__)
#define ZU_LOG_WARNING(group, ...) ZU_LOG(group, ::Zu::LgTypes::Warning, __VA_ARGS__)
#define ZU_LOG_INFORMATIONAL(group, ...) ZU_LOG(group, ::Zu::LgTypes::Informational, __VA_ARGS__)
#define ZU_LOG_TRACING(group, ...) ZU_LOG(group, ::Zu::LgTypes::Tracing, __VA_ARGS__)
#define ZU_LOG_PROFILING(group, ...) ZU_LOG(group, ::Zu::LgTypes::Profiling, __VA_ARGS__)
/// @}

#endif
