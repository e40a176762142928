/// @file
/// Statements of tracing.

#ifndef ZU_BASE_TRACESTATEMENT_H
#define ZU_BASE_TRACESTATEMENT_H

#include "plainTextStream.h"
#include "trace.h"
#include "traceManager.h"
#include "xGlue.h"

#include <optional>
#include <utility>

/// Makes a level known to the source in which it is placed, outside functions:
/// ZU_TRACE_LEVEL(Parser). Levels of one name are the same level in all sources, including the
/// library's own: Main. Statements also work before it is reached: in the constructor of a static
/// object that precedes it, or in another source.
#define ZU_TRACE_LEVEL(name)                                                                       \
    namespace TraceLevels                                                                          \
    {                                                                                              \
    [[maybe_unused]] static ::Zu::TraceLevel* const name =                                         \
        ::Zu::Trace::registerLevel(#name, __FILE__);                                               \
    }                                                                                              \
    static_assert(true)

/// Traces a line if the level is on: ZU_TRACE(Parser, "token " << token). When it is off, no
/// operand is evaluated. An operand may be anything that a standard stream accepts; this stream has
/// the locale "C", whatever the global one is.
#define ZU_TRACE(level, ...)                                                                       \
    do                                                                                             \
    {                                                                                              \
        if (::Zu::Trace::isEnabled(::Zu::Trace::levelOf(TraceLevels::level, #level)))              \
        {                                                                                          \
            ::Zu::PlainTextStream zuTraceStream;                                                   \
            ::Zu::TraceManager::getInstance().getTrace().log(zuTraceStream, __FILE__, __LINE__);   \
            zuTraceStream << __VA_ARGS__;                                                          \
            ::Zu::TraceManager::getInstance().print(zuTraceStream.str().c_str());                  \
        }                                                                                          \
    } while (false)

/// Traces the entry into the enclosing scope and the exit from it, by a name that is kept as a
/// pointer: ZU_TRACE_SCOPE(Parser, "parse"). When the level is off at the entry, the name is not
/// evaluated, and no manager is asked for anything.
#define ZU_TRACE_SCOPE(level, name)                                                                \
    [[maybe_unused]] const std::optional<::Zu::Trace::Entry> ZU_XGLUE(zuTraceEntry, __COUNTER__) = \
        ::Zu::Trace::isEnabled(::Zu::Trace::levelOf(TraceLevels::level, #level))                   \
            ? std::optional<::Zu::Trace::Entry>(                                                   \
                  std::in_place, ::Zu::TraceManager::getInstance().getTrace(),                     \
                  ::Zu::Trace::levelOf(TraceLevels::level, #level), name, __FILE__, __LINE__)      \
            : std::optional<::Zu::Trace::Entry>()

#endif
