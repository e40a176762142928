/// @file
/// Tracing for programs with several threads.

#ifndef ZU_APP_THREADTRACEMANAGER_H
#define ZU_APP_THREADTRACEMANAGER_H

#include "../base/traceManager.h"
#include "appApi.h"

namespace Zu
{

/// Gives each thread an indentation of its own, which lasts as long as the thread, and writes each
/// line to standard output as a whole, until the process ends. The option "prefix", initially on,
/// puts the thread's id in front, as the log does: "(0x00004979) ".
///
/// Thread-safety: any thread may trace. Construct the object before other threads trace, and
/// destroy it when none does any more. Other output to std::cout may come between lines.
class ZU_APP_API ThreadTraceManager : public TraceManager
{
public:
    /// Becomes the current manager if it is the first of the process, or if its priority is greater
    /// than the current one's; the default one has 0.
    explicit ThreadTraceManager(int priority = 1);
    ~ThreadTraceManager() override;

    Trace& getTrace() override;
    void print(const char* text) const override;
};

/// Gives each thread an indentation of its own, and makes each line an event of the log, of level
/// Tracing. The log names the thread, so nothing is put in front. While the logger is inactive,
/// lines go to standard output.
///
/// With LgLog::setBlockingTrace() no line is lost, and one that is too long becomes several.
/// Otherwise a line that finds no room is lost and counted, like any event, and one that is longer
/// than a queue's text becomes "#". A line that is traced while a log statement inserts an operand
/// is lost.
///
/// Thread-safety: as above, but the thread that reads the events must not trace. While the logger
/// is active, each thread needs a queue of its own: LgService sees to that.
class ZU_APP_API LogTraceManager : public TraceManager
{
public:
    /// As for ThreadTraceManager.
    explicit LogTraceManager(int priority = 1);
    ~LogTraceManager() override;

    Trace& getTrace() override;
    void print(const char* text) const override;
};

} // namespace Zu

#endif
