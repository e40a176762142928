// The package "initialize": gives defaults, environment and overrides their values.

#include "base/inContextAlias.h"
#include "base/inContextAliasMgr.h"
#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::initialize>::InInit() : InPackageInit("initialize")
{
    registerPackage();
}

template <> void InInit<ZuInit::initialize>::performInitialize()
{
    InContextAliasMgr<InDefAlias>::initializeAll();
    InContextAliasMgr<InEnvAlias>::initializeAll();
    InContextAliasMgr<InOvrAlias>::initializeAll();
}

template <> void InInit<ZuInit::initialize>::performFinalize()
{
    InContextAliasMgr<InDefAlias>::finalizeAll();
    InContextAliasMgr<InEnvAlias>::finalizeAll();
    InContextAliasMgr<InOvrAlias>::finalizeAll();
}

namespace
{

InInit<ZuInit::initialize> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_INITIALIZE);

} // namespace

} // namespace Zu
