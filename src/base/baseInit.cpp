// The package "base": everything else of the library.

#include "base/dbgBuildInfoUtil.h"
#include "base/dbgLibraryBuildInfo.h"
#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::base>::InInit() : InPackageInit("base")
{
    registerPackage();
    addDependency(InInit<ZuInit::random>::getType());
    addDependency(InInit<ZuInit::discreteTime>::getType());
    addDependency(InInit<ZuInit::baseMath>::getType());
    addDependency(InInit<ZuInit::initVars>::getType());
    addDependency(InInit<ZuInit::testing>::getType());
    addDependency(InInit<ZuInit::debugging>::getType());
    addDependency(InInit<ZuInit::logger>::getType());
    addDependency(InInit<ZuInit::profiling>::getType());
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initArg>::getType());
    addDependency(InInit<ZuInit::heapMgr>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::base>::performInitialize()
{
    DbgBuildInfoUtil::registerInfo(ObjPtr<DbgBuildInfo>(new LibraryBuildInfo));
}

template <> void InInit<ZuInit::base>::performFinalize() {}

namespace
{

InInit<ZuInit::base> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_BASE);

} // namespace

} // namespace Zu
