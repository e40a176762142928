#include "servicePlatform.h"

#include "app/lgServiceMap.h"
#include "app/lgServicePlatform.h"
#include "app/threadSlot.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "modelChecker.h"

#include <array>
#include <memory>
#include <optional>
#include <ostream>
#include <pthread.h>
#include <streambuf>
#include <string>

namespace
{

using Zu::LgQueue;

class SmallQueue : public LgQueue
{
public:
    SmallQueue(std::uint32_t threadId, const servicePlatform::Sizes& sizes)
        : LgQueue(threadId, sizes._entries, sizes._characters)
    {
    }
};

// How often each letter was written. One for each, so that reading one is no race with writing
// another.
std::array<int, 26> counts{};

// Gets lines.
class Recorder : public std::streambuf
{
protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        std::string_view line(text, static_cast<std::size_t>(size));
        // Behind what LgReader puts in front of a text.
        const std::size_t prefix = line.rfind(": ");
        if (prefix != std::string_view::npos) line.remove_prefix(prefix + 2);
        if (line.starts_with("Event overflow")) return size;
        line.remove_suffix(1);
        for (const char letter : line) ++counts.at(static_cast<std::size_t>(letter - 'a'));
        return size;
    }
};

std::ostream& stream()
{
    static auto* const theStream = new std::ostream(new Recorder);
    return *theStream;
}

struct Slots
{
    std::array<void*, Zu::ThreadSlot::Count> _values{};
};
std::array<Slots, model::MAX_THREADS + 1> slotsOfThreads;
std::array<Zu::ThreadSlot::ThreadEnded, Zu::ThreadSlot::Count> threadEnded{};

void*& slotOf(Zu::ThreadSlot::Slot slot)
{
    return slotsOfThreads.at(pthread_self())._values.at(slot);
}

} // namespace

namespace servicePlatform
{

bool isWritten(std::string_view text)
{
    for (const char letter : text)
        if (counts.at(static_cast<std::size_t>(letter - 'a')) != 1) return false;
    return true;
}

void reset()
{
    stream();
    slotsOfThreads = {};
    counts = {};
}

void endThread()
{
    void*& queue = slotOf(Zu::ThreadSlot::Queue);
    if (!queue) return;
    void* const value = queue;
    queue = nullptr;
    threadEnded.at(Zu::ThreadSlot::Queue)(value);
}

} // namespace servicePlatform

// The outputs of all levels are the same.
extern "C" std::ostream* __wrap__ZN2Zu5LgLog14getLevelOutputENS_7LgTypes5LevelE(Zu::LgTypes::Level)
{
    return &stream();
}

namespace Zu
{

void ThreadSlot::setThreadEnded(Slot slot, ThreadEnded ended)
{
    threadEnded.at(slot) = ended;
}

void* ThreadSlot::get(Slot slot)
{
    return slotOf(slot);
}

void ThreadSlot::set(Slot slot, void* value)
{
    slotOf(slot) = value;
}

bool LgServicePlatform::prepareBarrier()
{
    return true;
}

bool LgServicePlatform::barrier()
{
    return model::heavyBarrier();
}

// Threads are never idle for so short a time that a nap would do.
bool LgServicePlatform::nap()
{
    return false;
}

void LgServicePlatform::lowerPriority() {}

const std::size_t LgServicePlatform::LONGEST_THREAD_NAME = 15;

void LgServicePlatform::nameThread(const std::string&) {}

void LgServicePlatform::onFork(void (*)(), void (*)(), void (*)()) {}

void LgServicePlatform::onQuickExit(void (*)()) {}

void LgServicePlatform::onHangup(void (*)()) {}

void LgServicePlatform::onFatalSignals(void (*)()) {}

bool LgServicePlatform::isEnding()
{
    return false;
}

struct LgServicePlatform::SignalBlock::Saved
{
};

LgServicePlatform::SignalBlock::SignalBlock() = default;

LgServicePlatform::SignalBlock::~SignalBlock() = default;

void LgServiceMap::begin(const Settings&) {}

LgQueue* LgServiceMap::makeQueue(std::uint32_t threadId, const LgQueue::Observer*)
{
    return new SmallQueue(threadId, servicePlatform::sizes);
}

std::uint32_t LgServiceMap::indexOf(const LgQueue&) const
{
    return LgMap::NONE;
}

std::optional<std::uint64_t> LgServiceMap::getReportedOnHeap(const LgQueue&)
{
    return std::nullopt;
}

void LgServiceMap::addReportedOnHeap(const LgQueue&, std::uint64_t) {}

void LgServiceMap::forgetOnHeap(const LgQueue&) {}

void LgServiceMap::commit(std::uint64_t, LgMap::State) {}

LgServiceMap::Room LgServiceMap::makeRoom(std::uint64_t)
{
    return {};
}

bool LgServiceMap::reserve(const Room&, std::uint64_t, std::uint64_t)
{
    return false;
}

void LgServiceMap::giveBack(const Room&) {}

void LgServiceMap::reportNotKept(const std::string&) {}

void LgServiceMap::removeFileIfEmpty() {}

void LgServiceMap::keepForChild(const LgQueue*) {}

void LgServiceMap::forgetKept() {}

void LgServiceMap::leaveInChild() {}

// Not called, but others of the library's sources would bring the real one.
std::string LgServiceMap::prefixFor(const std::string&)
{
    return {};
}

} // namespace Zu
