// The package "initArg": binds the command line.

#include "base/inContextAlias.h"
#include "base/inContextAliasMgr.h"
#include "base/inInit.h"
#include "base/initOrder.h"

namespace Zu
{

template <> InInit<ZuInit::initArg>::InInit() : InPackageInit("initArg")
{
    registerPackage();
    addDependency(InInit<ZuInit::initialize>::getType());
}

template <> void InInit<ZuInit::initArg>::performInitialize()
{
    InContextAliasMgr<InArgAlias>::initializeAll();
}

template <> void InInit<ZuInit::initArg>::performFinalize()
{
    InContextAliasMgr<InArgAlias>::finalizeAll();
}

namespace
{

InInit<ZuInit::initArg> thePackage ZU_INIT_ORDER(ZU_INIT_ORDER_INIT_ARG);

} // namespace

} // namespace Zu
