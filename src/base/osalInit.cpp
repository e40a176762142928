// The package "osal": the operating-system layer.

#include "base/inInit.h"
#include "base/initOrder.h"
#include "base/osCpuInfo.h"
#include "base/osMemoryArch.h"

namespace Zu
{

template <> InInit<ZuInit::osal>::InInit() : InPackageInit("osal")
{
    registerPackage();
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::osal>::performInitialize()
{
    OsCpuInfo::initialize();
    OsMemoryArch::getInstance();
}

template <> void InInit<ZuInit::osal>::performFinalize()
{
    OsCpuInfo::finalize();
}

namespace
{

InInit<ZuInit::osal> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_OSAL);

} // namespace

} // namespace Zu
