// The package "debugging": tracing and build records, with the switches of their validation.

#include "base/dbgBuildInfoLog.h"
#include "base/dbgBuildInfoMgr.h"
#include "base/dbgBuildInfoUtil.h"
#include "base/inInit.h"
#include "base/initOrder.h"
#include "base/inVariable.h"
#include "base/trace.h"

namespace Zu
{

template <> InInit<ZuInit::debugging>::InInit() : InPackageInit("debugging")
{
    registerPackage();
    addDependency(InInit<ZuInit::logger>::getType());
    addDependency(InInit<ZuInit::osal>::getType());
    addDependency(InInit<ZuInit::initArg>::getType());
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::debugging>::performInitialize();
template <> void InInit<ZuInit::debugging>::performFinalize();

namespace
{

InInit<ZuInit::debugging> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_DEBUGGING);

InEnvAlias
    noValidateEnv ZU_INIT_ORDER(ZU_INIT_ORDER_DEBUGGING)("ZU_BUILDINFO_NO_VALIDATE",
                                                         "Suppress validation of version numbers");
InEnvAlias
    checkStampsEnv ZU_INIT_ORDER(ZU_INIT_ORDER_DEBUGGING)("ZU_BUILDINFO_CHECK_STAMPS",
                                                          "Enable validation of build stamps");
InDefAlias noValidateDefault
    ZU_INIT_ORDER(ZU_INIT_ORDER_DEBUGGING)("0", "Default value for validation suppression env var");
InDefAlias checkStampsDefault
    ZU_INIT_ORDER(ZU_INIT_ORDER_DEBUGGING)("0", "Default value for enabling stamp check env var");

InVariable<int>
    noValidate ZU_INIT_ORDER(ZU_INIT_ORDER_DEBUGGING)("Zu::Corvane::debugging::buildInfoNoValidate",
                                                      thePackage, noValidateEnv, noValidateDefault);
InVariable<int> checkStamps ZU_INIT_ORDER(ZU_INIT_ORDER_DEBUGGING)(
    "Zu::Corvane::debugging::buildInfoCheckStamps", thePackage, checkStampsEnv, checkStampsDefault);

} // namespace

template <> void InInit<ZuInit::debugging>::performInitialize()
{
    // Creates the options and applies those that ZU_TRACE_OPTIONS sets.
    Trace::setOptions("");
    DbgBuildInfoLog::start();
    DbgBuildInfoMgr::init();
    // A variable that is 0 or not set leaves its switch unchanged.
    if (noValidate.getValue() != 0) DbgBuildInfoUtil::setValidateVersions(false);
    if (checkStamps.getValue() != 0) DbgBuildInfoUtil::setCheckStamps(true);
}

template <> void InInit<ZuInit::debugging>::performFinalize()
{
    DbgBuildInfoMgr::fini();
    DbgBuildInfoLog::stop();
}

} // namespace Zu
