/// @file
/// Where lines of tracing go.

#ifndef ZU_BASE_TRACEMANAGER_H
#define ZU_BASE_TRACEMANAGER_H

#include "baseApi.h"
#include "trace.h"

#include <cstdint>

namespace Zu
{

/// Provides the Trace of the calling context, and receives the finished lines. The default manager
/// has a single Trace and writes to standard output.
///
/// Thread-safety: one thread makes and destroys managers, while no other thread traces.
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
    /// than the current one's; otherwise it is ignored. The default one, of priority 0, is
    /// installed by the first operation that traces.
    explicit TraceManager(int priority);

    /// If this manager is current, the default one replaces it; an earlier one is not restored.
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
