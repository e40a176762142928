// The package "random": random numbers.

#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::random>::InInit() : InPackageInit("random")
{
    registerPackage();
    addDependency(InInit<ZuInit::debugging>::getType());
    addDependency(InInit<ZuInit::profiling>::getType());
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initArg>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::random>::performInitialize() {}

template <> void InInit<ZuInit::random>::performFinalize() {}

namespace
{

InInit<ZuInit::random> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_RANDOM);

} // namespace

} // namespace Zu
