/// @file
/// The consuming end of the logger.

#ifndef ZU_BASE_LGREADER_H
#define ZU_BASE_LGREADER_H

#include "baseApi.h"

#include <cstdint>

namespace Zu
{

class LgQueue;

/// Merges the events of all registered queues by time and writes each as one line:
///
/// `0000000001 0000000005 (0x00000abc) Fatal Error: BuildInfo Version mismatch`
///
/// that is the time since LgLog::init() in ticks of HwCounter, its high and its low word in decimal
/// digits of their own; the thread; the level; the text. Without time stamps the text stands alone.
/// "Event overflow [17]" with the level Informational stands for 17 lost events, at the time of the
/// first.
///
/// A line goes to the file of its level and, if the level is echoed, to standard output, and is
/// flushed; a level with neither swallows it. What a file does not take is lost, without a word,
/// but counted. What the lock between processes raises reaches the caller.
///
/// The queue of a thread that has ended is deleted once it is empty.
///
/// Thread-safety: one reader at a time in a process, once LgLog::init() has run. A call needs
/// 32 KiB of stack.
class ZU_BASE_API LgReader
{
public:
    /// Whether an event waits in any queue.
    bool eventsPending();

    /// Writes the earliest event; false if there is none.
    bool flushEarliest();

    /// Writes all events, until no queue has one; so it does not return while producers keep up a
    /// steady stream.
    void flushAll();

    /// How many events the files of their levels have not taken whole, since the process began:
    /// they could not be opened, their directory could not be made, or the disk was full. Events of
    /// a level that has no file by its set-up are not among them. Any thread may ask.
    static std::uint64_t getUnwrittenCount();

private:
    // False if a queue was reaped on the way; then nothing is found yet.
    static bool findEarliest(LgQueue*& earliest);
    static void flushQueue(LgQueue* q);
};

} // namespace Zu

#endif
