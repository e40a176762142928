// The package "profiling": the hardware counter and the sleeper.

#include "base/hwCounter.h"
#include "base/inInit.h"
#include "base/initOrder.h"
#include "base/sleeper.h"

namespace Zu
{

namespace
{

// Kept here so that it does not look like a leak.
[[maybe_unused]] HwCounterEng* earlyEngine = nullptr;

} // namespace

template <> InInit<ZuInit::profiling>::InInit() : InPackageInit("profiling")
{
    registerPackage();
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::profiling>::performInitialize()
{
    // An engine that an early reader has made is deliberately kept: others may hold it. The
    // exchange releases the new engine to the loads of HwCounter::engine().
    earlyEngine =
        HwCounter::_theHwCounter.exchange(HwCounterEng::create(), std::memory_order_acq_rel);
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
