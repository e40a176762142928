// The package "heapMgr": heap settings.

#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::heapMgr>::InInit() : InPackageInit("heapMgr")
{
    registerPackage();
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::heapMgr>::performInitialize() {}

template <> void InInit<ZuInit::heapMgr>::performFinalize() {}

namespace
{

InInit<ZuInit::heapMgr> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_HEAP_MGR);

} // namespace

} // namespace Zu
