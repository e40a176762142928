/// @file
/// The door through which finished trace lines enter the logger.

#ifndef ZU_BASE_LGTRACE_H
#define ZU_BASE_LGTRACE_H

#include "baseApi.h"

namespace Zu
{

/// Makes a trace line an event of level Tracing. No group is asked and no group's name put before
/// it.
///
/// Thread-safety: any thread but the reader's may call it.
class ZU_BASE_API LgTrace
{
public:
    LgTrace() = delete;

    /// Logs the text, unless it is empty. While the logger is inactive it goes to standard output.
    ///
    /// With LgLog::setBlockingTrace() no line is lost: the call waits for room in the thread's
    /// queue, whose observer must implement that, and so stands still while the reader does. A text
    /// that is too long for the ring becomes several lines.
    ///
    /// A null text asserts "mess"; a queue that has no room after the wait asserts
    /// "!q.isFull() && ( s.getNumCharacters() >= static_cast<unsigned int>( len ))". Both are
    /// fatal.
    static void print(const char* mess);
};

} // namespace Zu

#endif
