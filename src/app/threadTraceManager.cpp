#include "app/threadTraceManager.h"

#include "app/lgServicePlatform.h"
#include "app/threadSlot.h"
#include "base/lgLog.h"
#include "base/lgTrace.h"
#include "base/osUtils.h"

#include <cstdio>
#include <iostream>
#include <memory>
#include <mutex>

namespace Zu
{

namespace
{

class PrefixedTrace : public Trace
{
private:
    void printPrefix(std::ostream& os) override
    {
        char text[16];
        std::snprintf(text, sizeof text, "(0x%08x) ", OsUtils::getThreadId());
        os << static_cast<const char*>(text);
    }
};

// A thread's Trace objects. They belong to the thread and not to a manager, so that they may
// outlive the current manager.
struct Traces
{
    PrefixedTrace _prefixed;
    Trace _plain;
};

Traces& tracesOfThread()
{
    static const bool isPrepared = []
    {
        ThreadSlot::setThreadEnded(ThreadSlot::Traces,
                                   [](void* traces) { delete static_cast<Traces*>(traces); });
        return true;
    }();
    static_cast<void>(isPrepared);
    if (void* const traces = ThreadSlot::get(ThreadSlot::Traces))
        return *static_cast<Traces*>(traces);
    auto traces = std::make_unique<Traces>();
    ThreadSlot::set(ThreadSlot::Traces, traces.get());
    return *traces.release();
}

std::mutex& outputMutex()
{
    static std::mutex* const theMutex = []
    {
        auto* const mutex = new std::mutex;
        LgServicePlatform::onFork([] { outputMutex().lock(); }, [] { outputMutex().unlock(); },
                                  [] { outputMutex().unlock(); });
        return mutex;
    }();
    return *theMutex;
}

} // namespace

ThreadTraceManager::ThreadTraceManager(int priority) : TraceManager(priority) {}

ThreadTraceManager::~ThreadTraceManager() = default;

Trace& ThreadTraceManager::getTrace()
{
    return tracesOfThread()._prefixed;
}

void ThreadTraceManager::print(const char* text) const
{
    const std::lock_guard guard(outputMutex());
    TraceManager::print(text);
}

LogTraceManager::LogTraceManager(int priority) : TraceManager(priority) {}

LogTraceManager::~LogTraceManager() = default;

Trace& LogTraceManager::getTrace()
{
    return tracesOfThread()._plain;
}

void LogTraceManager::print(const char* text) const
{
    if (!text) return;
    if (LgLog::isLoggerActive()) return LgTrace::print(text);
    const std::lock_guard guard(outputMutex());
    LgTrace::print(text);
}

} // namespace Zu
