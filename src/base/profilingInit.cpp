// The package "profiling": the hardware counter and the sleeper.

#include "base/hwCounter.h"
#include "base/inInit.h"
#include "base/initOrder.h"
#include "base/sleeper.h"

namespace Zu
{

template <> InInit<ZuInit::profiling>::InInit() : InPackageInit("profiling")
{
    registerPackage();
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::profiling>::performInitialize()
{
    // Deliberately without a look at an engine that an early reader has made: others may hold it.
    // Releases the new engine to the loads of HwCounter::engine().
    HwCounter::_theHwCounter.store(HwCounterEng::create(), std::memory_order_release);
    InSingleton<Sleeper>::create(Sleeper::create());
}

template <> void InInit<ZuInit::profiling>::performFinalize()
{
    InSingleton<Sleeper>::destroy();
}

namespace
{

InInit<ZuInit::profiling> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_PROFILING);

} // namespace

} // namespace Zu
