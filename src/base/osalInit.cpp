// The package "osal": the operating-system layer.

#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::osal>::InInit() : InPackageInit("osal")
{
    registerPackage();
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::osal>::performInitialize() {}

template <> void InInit<ZuInit::osal>::performFinalize() {}

namespace
{

InInit<ZuInit::osal> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_OSAL);

} // namespace

} // namespace Zu
