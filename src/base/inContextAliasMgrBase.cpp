#include "base/inContextAliasMgrBase.h"

#include "base/compiler.h"

namespace Zu
{

// Exists before any constructor runs.
ZU_CONSTINIT_VECTOR Vector<char*> InContextAliasMgrBase::_args ZU_CONSTINIT_VECTOR_PRIORITY;

namespace
{

// Deletes the words if the process exits without a shut-down. It is constructed after the list, so
// it is destroyed before it.
class WordsEnd : public InContextAliasMgrBase
{
public:
    ~WordsEnd() override
    {
        for (char* word : args()) delete[] word;
        args().clear();
    }
} theWordsEnd;

} // namespace

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
