#include "base/traceManager.h"

#include <iostream>
#include <string>

namespace Zu
{

namespace
{

class SingleTraceManager : public TraceManager
{
public:
    SingleTraceManager() : TraceManager(0) {}

    Trace& getTrace() override
    {
        return _trace;
    }

private:
    Trace _trace;
};

} // namespace

TraceManager* TraceManager::_manager = nullptr;

TraceManager& TraceManager::getInstance()
{
    return _manager ? *_manager : defaultManager();
}

TraceManager& TraceManager::defaultManager()
{
    static TraceManager* const theManager = new SingleTraceManager;
    return *theManager;
}

TraceManager::TraceManager(int priority) : _priority(priority)
{
    registerManager(this);
}

TraceManager::~TraceManager()
{
    unregisterManager(this);
}

void TraceManager::registerManager(TraceManager* manager)
{
    if (!_manager || manager->_priority > _manager->_priority) _manager = manager;
}

void TraceManager::unregisterManager(TraceManager* manager)
{
    if (_manager != manager) return;
    // No manager's priority must compete with that of the default one.
    _manager = nullptr;
    _manager = &defaultManager();
}

void TraceManager::print(const char* text) const
{
    if (!text || *text == '\0') return;
    // Standard output is ready once the static objects of a source that includes its header are
    // constructed, but tracing may start earlier.
    static const std::ios_base::Init theStreams;
    // In one piece, so that lines of different threads do not mix.
    const std::string line = std::string(text) + '\n';
    std::cout.write(line.data(), static_cast<std::streamsize>(line.size())).flush();
}

} // namespace Zu
