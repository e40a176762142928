// The package "logger": the event logger.

#include "base/inInit.h"
#include "base/initOrder.h"
#include "base/lgLog.h"

namespace Zu
{

template <> InInit<ZuInit::logger>::InInit() : InPackageInit("logger")
{
    registerPackage();
    addDependency(InInit<ZuInit::profiling>::getType());
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::logger>::performInitialize()
{
    LgLog::init();
}

template <> void InInit<ZuInit::logger>::performFinalize()
{
    LgLog::destroy();
}

namespace
{

InInit<ZuInit::logger> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_LOGGER);

} // namespace

} // namespace Zu
