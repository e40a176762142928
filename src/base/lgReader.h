/// @file
/// The consuming end of the logger.

#ifndef ZU_BASE_LGREADER_H
#define ZU_BASE_LGREADER_H

#include "baseApi.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>

namespace Zu
{

class LgQueue;

/// Merges the events of all registered queues by time and writes each as one line:
///
/// `0000000001 0000000005 (0x00000abc) Fatal Error: BuildInfo Version mismatch`
///
/// That is the time since LgLog::init() in ticks of HwCounter, with its high and its low word each
/// in decimal; the thread; the level; the text. Without time stamps the line is just the text.
/// "Event overflow [17]" with the level Informational stands for 17 lost events, at the time of the
/// first one.
///
/// A line goes to the file of its level and, if the level is echoed, to standard output, and is
/// flushed. A level with neither swallows it. A line that a file does not accept is lost silently,
/// but counted. An exception of the inter-process lock reaches the caller.
///
/// The queue of a thread that has ended is deleted once it is empty.
///
/// Thread-safety: one reader at a time in a process, after LgLog::init(). A call needs 32 KiB of
/// stack.
class ZU_BASE_API LgReader
{
public:
    /// Whether any queue has a waiting event.
    bool eventsPending();

    /// Writes the earliest event; false if there is none.
    bool flushEarliest();

    /// Writes events until no queue has one. It does not return while producers keep up a steady
    /// stream.
    void flushAll();

    /// How many events have not been written completely to the file of their level since the
    /// process started: the file could not be opened, its directory could not be created, or the
    /// disk was full. Events of a level that is configured without a file do not count. Any thread
    /// may call this.
    static std::uint64_t getUnwrittenCount();

    /// Writes a line, with its line feed, in one piece and flushes the stream. False if the stream
    /// has not accepted it, or has raised.
    static bool writeLine(std::ostream& out, const char* line, std::size_t length);

    /// Counts events that another reader has not been able to write. Any thread may call this.
    static void addUnwrittenCount(std::uint64_t events);

private:
    // Returns false if it deleted a queue on the way; the search must then be repeated.
    static bool findEarliest(LgQueue*& earliest);
    static void flushQueue(LgQueue* q);
};

} // namespace Zu

#endif
