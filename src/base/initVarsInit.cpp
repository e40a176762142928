// The package "initVars": init variables.

#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::initVars>::InInit() : InPackageInit("initVars")
{
    registerPackage();
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::initVars>::performInitialize() {}

template <> void InInit<ZuInit::initVars>::performFinalize() {}

namespace
{

InInit<ZuInit::initVars> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_INIT_VARS);

} // namespace

} // namespace Zu
