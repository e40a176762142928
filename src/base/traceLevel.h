/// @file
/// The named switches of tracing.

#ifndef ZU_BASE_TRACELEVEL_H
#define ZU_BASE_TRACELEVEL_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "containers.h"

#include <atomic>

namespace Zu
{

/// A named switch. Trace::registerLevel() finds or makes the one of a name; it is never deleted.
class ZU_BASE_API TraceLevel
{
    friend class TraceOptions;

public:
    TraceLevel(const TraceLevel&) = delete;
    TraceLevel& operator=(const TraceLevel&) = delete;

    /// The name; owned by the level.
    const char* getName() const
    {
        return _name.get();
    }

    /// Whether the level itself is on; Trace::isEnabled() also checks whether tracing is on.
    bool isOn() const
    {
        return _enabled.load(std::memory_order_relaxed);
    }

private:
    explicit TraceLevel(const char* name);
    ~TraceLevel();

    ArrayPtr<char> _name;
    std::atomic<bool> _enabled{false};
    // The sources that registered it, each as many times as it did so.
    Vector<const char*> _files;
};

} // namespace Zu

#endif
