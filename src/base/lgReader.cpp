#include "base/lgReader.h"

#include "base/internalAssert.h"
#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/lgTypes.h"

#include <atomic>
#include <charconv>
#include <cstring>
#include <iostream>
#include <limits>

namespace Zu
{

namespace
{

constexpr std::size_t PREFIX_SIZE = 80;

inline char* append(char* place, const char* text)
{
    const std::size_t length = std::strlen(text);
    std::memcpy(place, text, length);
    return place + length;
}

// Appends all digits of a number, with leading zeros.
template <std::uint32_t BASE, int WIDTH> char* appendFilled(char* place, std::uint32_t value)
{
    for (int i = WIDTH; i > 0; --i, value /= BASE) place[i - 1] = "0123456789abcdef"[value % BASE];
    return place + WIDTH;
}

char* appendPrefix(char* place, const LgQueue& q, const LgQueue::Entry& e, LgTypes::Level level)
{
    const std::uint64_t delta = e.getTimeStamp() - LgLog::getStart();
    place = appendFilled<10, 10>(place, static_cast<std::uint32_t>(delta >> 32));
    place = append(place, " ");
    place = appendFilled<10, 10>(place, static_cast<std::uint32_t>(delta));
    place = append(place, " (0x");
    place = appendFilled<16, 8>(place, q.getThreadId());
    place = append(place, ") ");
    place = append(place, LgTypes::levelToString(level));
    return append(place, ": ");
}

char* appendText(char* place, LgQueue& q, const LgQueue::Entry& e)
{
    if (e.isOverflowEntry())
    {
        char count[std::numeric_limits<std::int32_t>::digits10 + 3];
        *std::to_chars(count, count + sizeof count - 1, e.getOverflowCount()).ptr = '\0';
        return append(append(append(place, "Event overflow ["), count), "]");
    }
    unsigned int length = 0;
    const bool fits = q.getStream().take(place, LgStream::BufSize, length);
    ZU_INTERNAL_ASSERT_TEXT(fits, "q->getStream().getNextSize() < BufSize");
    return place + length;
}

std::atomic<std::uint64_t> unwrittenCount{0};

} // namespace

bool LgReader::eventsPending()
{
    for (const LgQueue* const queue : LgLog::getRegistry()->getQueueList())
        if (!queue->isEmpty()) return true;
    return false;
}

bool LgReader::flushEarliest()
{
    LgQueue* earliest = nullptr;
    // A queue that was deleted may be in the list a second time, so the walk begins again without
    // it.
    while (!findEarliest(earliest)) continue;
    if (!earliest) return false;
    flushQueue(earliest);
    return true;
}

bool LgReader::findEarliest(LgQueue*& earliest)
{
    earliest = nullptr;
    for (LgQueue* const queue : LgLog::getRegistry()->getQueueList())
    {
        if (!queue->isEmpty())
        {
            const bool earlier = !earliest || queue->readEntry().getTimeStamp() <
                                                  earliest->readEntry().getTimeStamp();
            if (earlier) earliest = queue;
        }
        else if (!earliest && !queue->isCreatorAlive() && queue->isEmpty())
        {
            // isEmpty() was checked again, since the last event may have come just before the
            // thread ended.
            LgLog::getRegistry()->deregisterQueue(queue);
            LgQueue::end(queue);
            return false;
        }
    }
    return true;
}

// In one piece, which costs one system call.
bool LgReader::writeLine(std::ostream& out, const char* line, std::size_t length)
{
    if (LgLog::isTimeStampsEnabled())
    {
        // Other writers of the stream may rely on this format.
        out.fill(' ');
        out.setf(std::ios::dec, std::ios::basefield);
    }
    try
    {
        // Does the same as write() and flush(), but constructs the sentry only once.
        const std::ostream::sentry prepared(out);
        if (!prepared) return false;
        const auto size = static_cast<std::streamsize>(length);
        const bool isWritten = out.rdbuf()->sputn(line, size) == size;
        if (isWritten && out.rdbuf()->pubsync() == 0) return true;
        out.setstate(std::ios::badbit);
    }
    catch (...)
    {
        // From a stream that a client has configured to raise. The line is lost, and the event is
        // removed nevertheless.
    }
    return false;
}

std::uint64_t LgReader::getUnwrittenCount()
{
    return unwrittenCount.load(std::memory_order_relaxed);
}

void LgReader::addUnwrittenCount(std::uint64_t events)
{
    unwrittenCount.fetch_add(events, std::memory_order_relaxed);
}

void LgReader::flushAll()
{
    while (flushEarliest()) continue;
}

void LgReader::flushQueue(LgQueue* q)
{
    ZU_INTERNAL_ASSERT(q);
    ZU_INTERNAL_ASSERT(!q->isEmpty());
    const LgQueue::Entry& e = q->readEntry();
    const LgTypes::Level level = e.isOverflowEntry() ? LgTypes::Informational : e.getLevel();
    const LgInterProcessLockGuard guard(LgLog::getInterProcessLock());
    char line[PREFIX_SIZE + LgStream::BufSize];
    char* end = line;
    if (LgLog::isTimeStampsEnabled()) end = appendPrefix(end, *q, e, level);
    end = appendText(end, *q, e);
    *end++ = '\n';
    const auto length = static_cast<std::size_t>(end - line);
    std::ostream* const out = LgLog::getLevelOutput(level);
    const bool isWritten = out ? writeLine(*out, line, length) : !LgLog::isFileMissing(level);
    if (!isWritten && !e.isOverflowEntry()) unwrittenCount.fetch_add(1, std::memory_order_relaxed);
    if (LgLog::isLevelEchoed(level)) writeLine(std::cout, line, length);
    q->removeEntry();
}

} // namespace Zu
