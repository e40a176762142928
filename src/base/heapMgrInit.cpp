// The package "heapMgr": heap settings.

#include "base/hmHeapMgr.h"
#include "base/inInit.h"
#include "base/initOrder.h"

#include <iostream>

namespace Zu
{

template <> InInit<ZuInit::heapMgr>::InInit() : InPackageInit("heapMgr")
{
    registerPackage();
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::heapMgr>::performInitialize()
{
    InSingleton<HmHeapMgr>::create(HmHeapMgr::create());
    const HmHeapMgr& manager = HmHeapMgr::getInstance();
    if (manager.isDumpHeapInfo()) manager.dump(std::cout);
}

template <> void InInit<ZuInit::heapMgr>::performFinalize()
{
    InSingleton<HmHeapMgr>::destroy();
}

namespace
{

InInit<ZuInit::heapMgr> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_HEAP_MGR);

} // namespace

} // namespace Zu
