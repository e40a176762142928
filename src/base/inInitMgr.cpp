#include "base/inInitMgr.h"

#include "base/duplicateString.h"
#include "base/inContextAliasMgrBase.h"
#include "base/inDebug.h"
#include "base/inEnvironment.h"
#include "base/inInitMgrImpl.h"
#include "base/internalAssert.h"
#include "base/inVariableBase.h"

#include <ostream>

namespace Zu
{

namespace
{

// Never destroyed: the texts that getEnv() returns live until the end of the process.
const InEnvironment& environmentSnapshot()
{
    static const InEnvironment* const snapshot =
        new InEnvironment(inProcessEnvironment(), inDebugStream());
    return *snapshot;
}

} // namespace

InInitMgr::InInitMgr()
{
    environmentSnapshot();
    _impl = std::make_unique<InInitMgrImpl>();
    InInitMgrImpl::_current = _impl.get();
}

InInitMgr::~InInitMgr()
{
    InInitMgrImpl::_current = nullptr;
}

InInitMgr& InInitMgr::getInstance()
{
    static InInitMgr manager;
    return manager;
}

void InInitMgr::initialize(int& argc, const char* const*& argv)
{
    for (int i = 0; argv && i < argc; ++i)
    {
        ArrayPtr<char> word(duplicateString(argv[i]));
        InContextAliasMgrBase::args().push_back(word.get());
        word.release();
    }
    argc = 0;
    argv = nullptr;
    _impl->runPendingPasses();
}

void InInitMgr::finalize()
{
    InVariableBase::clearPendingOverrides();
    Vector<char*>& args = InContextAliasMgrBase::args();
    for (; !args.empty(); args.pop_back()) delete[] args.back();
    ZU_INTERNAL_ASSERT_TEXT(args.empty(), "InContextAliasMgrBase::args().size() == 0");
    _impl->finalize();
}

bool InInitMgr::isInitializing() const
{
    return _impl->isInitializing();
}

bool InInitMgr::isFinalizing() const
{
    return _impl->isFinalizing();
}

std::ostream& InInitMgr::dump(std::ostream& os) const
{
    return _impl->dump(os);
}

std::ostream& InInitMgr::reportCycles(std::ostream& os) const
{
    return _impl->reportCycles(os);
}

const char* InInitMgr::getEnv(const char* name)
{
    return environmentSnapshot().find(name);
}

void InInitMgr::incReinitCount()
{
    _impl->incReinitCount();
}

void InInitMgr::decReinitCount()
{
    _impl->decReinitCount();
}

} // namespace Zu
