/// @file
/// Where lines of tracing go.

#ifndef ZU_BASE_TRACEMANAGER_H
#define ZU_BASE_TRACEMANAGER_H

#include "baseApi.h"
#include "trace.h"

#include <cstdint>

namespace Zu
{

/// Gives the calling context its Trace, and takes the finished lines. The default one has a single
/// Trace and writes to standard output.
///
/// Thread-safety: managers are made and ended by one thread while no other one traces.
class ZU_BASE_API TraceManager
{
public:
    TraceManager(const TraceManager&) = delete;
    TraceManager& operator=(const TraceManager&) = delete;

    /// The current manager.
    static TraceManager& getInstance();

    /// The Trace to be used in the calling context.
    virtual Trace& getTrace() = 0;

    /// Writes a line, unless the text is null or empty. There is no lock.
    virtual void print(const char* text) const;

protected:
    /// The new manager becomes current if none was installed before, or if its priority is greater
    /// than the current one's; otherwise it is left out. The default one, of priority 0, is
    /// installed by the first who traces.
    explicit TraceManager(int priority);

    /// If this manager is current, the default one is from here on; an earlier one is not restored.
    virtual ~TraceManager();

private:
    static TraceManager& defaultManager();
    static void registerManager(TraceManager* manager);
    static void unregisterManager(TraceManager* manager);

    // Null until one is installed.
    static TraceManager* _manager;

    std::int32_t _priority;
};

} // namespace Zu

#endif
