/// @file
/// The entry point of finished trace lines into the logger.

#ifndef ZU_BASE_LGTRACE_H
#define ZU_BASE_LGTRACE_H

#include "baseApi.h"

namespace Zu
{

/// Logs a trace line as an event of level Tracing. It consults no group and prepends no group name.
///
/// Thread-safety: any thread except the reader's may call it.
class ZU_BASE_API LgTrace
{
public:
    LgTrace() = delete;

    /// Logs the text, unless it is empty. While the logger is inactive it goes to standard output.
    ///
    /// With LgLog::setBlockingTrace() no line is lost: the call waits for room in the thread's
    /// queue, whose observer must implement the wait, and so blocks as long as the reader does. A
    /// text that is too long for the ring becomes several lines.
    ///
    /// A null text asserts "mess"; a queue that has no room after the wait asserts
    /// "!q.isFull() && ( s.getNumCharacters() >= static_cast<unsigned int>( len ))". Both are
    /// fatal.
    static void print(const char* mess);
};

} // namespace Zu

#endif
