#include "base/lgReader.h"

#include "base/internalAssert.h"
#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/lgTypes.h"

#include <charconv>
#include <cstring>
#include <iostream>
#include <limits>

namespace Zu
{

namespace
{

// As many characters as the ring of an LgStream has.
constexpr unsigned int BufSize = 32768;

constexpr int TIME_WIDTH = 10;
constexpr int THREAD_WIDTH = 8;
constexpr std::size_t PREFIX_SIZE = 80;

char* append(char* place, const char* text)
{
    const std::size_t length = std::strlen(text);
    std::memcpy(place, text, length);
    return place + length;
}

char* appendFilled(char* place, std::uint32_t value, int base, int width)
{
    char digits[std::numeric_limits<std::uint32_t>::digits10 + 1];
    const char* const end = std::to_chars(digits, digits + sizeof digits, value, base).ptr;
    const auto length = static_cast<int>(end - digits);
    std::memset(place, '0', static_cast<std::size_t>(width));
    std::memcpy(place + (width - length), digits, static_cast<std::size_t>(length));
    return place + width;
}

char* appendPrefix(char* place, const LgQueue& q, const LgQueue::Entry& e, LgTypes::Level level)
{
    const std::uint64_t delta = e.getTimeStamp() - LgLog::getStart();
    place = appendFilled(place, static_cast<std::uint32_t>(delta >> 32), 10, TIME_WIDTH);
    place = append(place, " ");
    place = appendFilled(place, static_cast<std::uint32_t>(delta), 10, TIME_WIDTH);
    place = append(place, " (0x");
    place = appendFilled(place, q.getThreadId(), 16, THREAD_WIDTH);
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
    const unsigned int length = q.getStream().getNextSize();
    ZU_INTERNAL_ASSERT_TEXT(length < BufSize, "q->getStream().getNextSize() < BufSize");
    q.getStream() >> place;
    return place + length;
}

// In one piece: a line costs one call of the system.
void writeLine(std::ostream& out, const char* line, std::size_t length)
{
    if (LgLog::isTimeStampsEnabled())
    {
        // As other writers of the stream may count on.
        out.fill(' ');
        out.setf(std::ios::dec, std::ios::basefield);
    }
    out.write(line, static_cast<std::streamsize>(length)).flush();
}

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
            // Asked again: the last event may have come just before the thread's end.
            LgLog::getRegistry()->deregisterQueue(queue);
            delete queue;
        }
    }
    if (!earliest) return false;
    flushQueue(earliest);
    return true;
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
    char line[PREFIX_SIZE + BufSize];
    char* end = line;
    if (LgLog::isTimeStampsEnabled()) end = appendPrefix(end, *q, e, level);
    end = appendText(end, *q, e);
    *end++ = '\n';
    const auto length = static_cast<std::size_t>(end - line);
    if (std::ostream* const out = LgLog::getLevelOutput(level)) writeLine(*out, line, length);
    if (LgLog::isLevelEchoed(level)) writeLine(std::cout, line, length);
    q->removeEntry();
}

} // namespace Zu
