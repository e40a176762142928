#include "base/lgTrace.h"

#include "base/internalAssert.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"

#include <cstring>
#include <iostream>
#include <string>

namespace Zu
{

namespace
{

// Writes in one piece, so that lines of several threads do not mix.
void printDirectly(const char* mess)
{
    const std::string line = std::string(mess) + '\n';
    std::cout.write(line.data(), static_cast<std::streamsize>(line.size())).flush();
}

void printInPieces(const char* mess)
{
    const std::string text(mess);
    const std::size_t length = LgStream::getMaxSize() - 1;
    for (std::size_t begin = 0; begin < text.size(); begin += length)
        LgTrace::print(text.substr(begin, length).c_str());
}

void waitForRoom(LgQueue& q, std::size_t len)
{
    const LgStream& s = q.getStream();
    q.waitForSpace(static_cast<int>(len));
    ZU_INTERNAL_ASSERT_TEXT(
        !q.isFull() && s.getNumCharacters() >= static_cast<unsigned int>(len),
        "!q.isFull() && ( s.getNumCharacters() >= static_cast<unsigned int>( len ))");
}

} // namespace

void LgTrace::print(const char* mess)
{
    ZU_INTERNAL_ASSERT(mess);
    if (*mess == '\0') return;
    if (!LgLog::isLoggerActive())
    {
        printDirectly(mess);
        return;
    }
    LgQueue& q = LgLog::getQueue();
    // From inside another event's insertion there is nothing to wait for, since the line is
    // refused.
    if (LgLog::getBlockingTrace() && !q.isInserting())
    {
        const std::size_t len = std::strlen(mess) + 1;
        if (len > LgStream::getMaxSize()) return printInPieces(mess);
        waitForRoom(q, len);
    }
    if (!q.reserveEntry(LgTypes::Tracing)) return;
    q.getStream() << mess << ends;
    q.addEntry();
}

} // namespace Zu
