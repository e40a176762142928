// The package "discreteTime": discrete time.

#include "base/dtRefTime.h"
#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::discreteTime>::InInit() : InPackageInit("discreteTime")
{
    registerPackage();
    addDependency(InInit<ZuInit::baseMath>::getType());
    addDependency(InInit<ZuInit::debugging>::getType());
    addDependency(InInit<ZuInit::profiling>::getType());
    addDependency(InInit<ZuInit::initArg>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::discreteTime>::performInitialize()
{
    // The reference clock starts counting here, so that its first use costs nothing extra.
    DtRefTimeFactory::getInstance();
}

template <> void InInit<ZuInit::discreteTime>::performFinalize() {}

namespace
{

InInit<ZuInit::discreteTime> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_DISCRETE_TIME);

} // namespace

} // namespace Zu
