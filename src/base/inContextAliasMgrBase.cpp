#include "base/inContextAliasMgrBase.h"

namespace Zu
{

// There before any constructor runs.
constinit Vector<char*> InContextAliasMgrBase::_args;

InContextAliasMgrBase::InContextAliasMgrBase() = default;

InContextAliasMgrBase::~InContextAliasMgrBase() = default;

const Vector<char*>& InContextAliasMgrBase::getUnboundArgs()
{
    return _args;
}

const char* InContextAliasMgrBase::getApplicationName()
{
    return _args[0];
}

Vector<char*>& InContextAliasMgrBase::args()
{
    return _args;
}

} // namespace Zu
