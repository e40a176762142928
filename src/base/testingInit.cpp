// The package "testing": the test framework.

#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::testing>::InInit() : InPackageInit("testing")
{
    registerPackage();
    addDependency(InInit<ZuInit::debugging>::getType());
    addDependency(InInit<ZuInit::logger>::getType());
    addDependency(InInit<ZuInit::profiling>::getType());
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initArg>::getType());
    addDependency(InInit<ZuInit::heapMgr>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::testing>::performInitialize() {}

template <> void InInit<ZuInit::testing>::performFinalize() {}

namespace
{

InInit<ZuInit::testing> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_TESTING);

} // namespace

} // namespace Zu
