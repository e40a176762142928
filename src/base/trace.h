/// @file
/// Trace lines, a developer's view of control flow.

#ifndef ZU_BASE_TRACE_H
#define ZU_BASE_TRACE_H

#include "baseApi.h"
#include "compiler.h"
#include "exBase.h"
#include "traceLevel.h"

#include <atomic>
#include <cstdint>
#include <iosfwd>

namespace Zu
{

/// Formats trace lines, and tracks the depth of their indentation. An option text, in the variable
/// ZU_TRACE_OPTIONS or passed to setOptions(), controls what is shown;
/// docs/profiling-and-tracing.md documents the options. Tracing works at any time, even before
/// main().
///
/// Thread-safety: any thread may call isEnabled(). Registration and options have no lock and belong
/// to one thread. A Trace belongs to one thread at a time; the default manager gives all threads
/// the same one.
class ZU_BASE_API Trace
{
    friend class TraceOptions;

public:
    class Entry;

    Trace() = default;
    Trace(const Trace&) = default;
    Trace& operator=(const Trace&) = default;
    virtual ~Trace();

    /// The level "Main", which is on by default.
    static TraceLevel* MainTraceLevel;

    /// The level of this name. If there is none, makes one that is switched off unless an option
    /// has switched it on before. The file is kept as a pointer unless it is null.
    static TraceLevel* registerLevel(const char* name, const char* file);

    /// The level that a source keeps, or the one of this name while it has none yet: a source gets
    /// its own when its static objects are constructed, and may trace before that.
    static const TraceLevel& levelOf(const TraceLevel* level, const char* name)
    {
        return level ? *level : *registerLevel(name, nullptr);
    }

    /// Applies an option text; null does nothing. Raises ExInternalError
    /// `Unknown token "<token>" in trace options.`; the options before it remain in effect.
    static void setOptions(const char* options);

    /// Writes all levels, whether they are on, and the sources that registered them, independently
    /// of the stream's format, which is restored.
    static void printLevels(std::ostream& os);

    /// Whether tracing and the level are on.
    static bool isEnabled(const TraceLevel& level)
    {
        return level.isOn() && _on.load(std::memory_order_relaxed);
    }

    /// Writes the beginning of every line: process, prefix, file and line, indentation, each as the
    /// options require. This and the operations below write the same text whatever the format of
    /// the stream, and restore that: flags, width and fill character.
    void prefix(std::ostream& os, const char* file, int line);

    /// Writes the beginning of a statement's line.
    void log(std::ostream& os, const char* file, int line);

    /// Writes a line with a text formatted as by `printf` in the locale "C", cut to 1,023
    /// characters.
    ZU_PRINTF_FORMAT(5, 6)
    void print(std::ostream& os, const char* file, int line, const char* format, ...);

    /// Prints the line "Throwing exception ..." if the level "Exceptions" is on, as it is by
    /// default.
    void printException(const ExBase& ex, const char* file, int line);

protected:
    /// Writes what a derived class wants in front of the line; nothing by default.
    virtual void printPrefix(std::ostream& os);

private:
    static void switchAll(bool on);

    void entering(std::ostream& os, const char* file, int line, const char* name);
    void exiting(std::ostream& os, const char* file, int line, const char* name);
    void indent();
    void unindent();

    static std::atomic<bool> _on;

    std::int32_t _indentation = 0;
};

/// Traces the entry into a scope and the exit from it. If the level was on at the entry, the exit
/// is also traced, whatever the level is then.
class ZU_BASE_API Trace::Entry
{
public:
    /// Name and file are kept as pointers.
    Entry(Trace& trace, const TraceLevel& level, const char* name, const char* file, int line);
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;
    ~Entry();

private:
    Trace& _trace;
    const char* _file;
    int _line;
    const char* _name;
    bool _written;
};

} // namespace Zu

#endif
