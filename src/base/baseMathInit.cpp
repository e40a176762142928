// The package "baseMath": numerics.

#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::baseMath>::InInit() : InPackageInit("baseMath")
{
    registerPackage();
    addDependency(InInit<ZuInit::debugging>::getType());
    addDependency(InInit<ZuInit::profiling>::getType());
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initArg>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::baseMath>::performInitialize() {}

template <> void InInit<ZuInit::baseMath>::performFinalize() {}

namespace
{

InInit<ZuInit::baseMath> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_BASE_MATH);

} // namespace

} // namespace Zu
