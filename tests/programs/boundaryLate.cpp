// A module that is loaded after start-up: it declares a package and a variable. Aliases can't be
// built any more at that time.

#include "boundaryModule.h"

#include "base/inInit.h"
#include "base/inVariable.h"

template <> Zu::InInit<boundary::latePackage>::InInit() : InPackageInit("late")
{
    registerPackage();
    addDependency(InInit<boundary::clientPackage>::getType());
}

static Zu::InInit<boundary::latePackage> thePackage;
static Zu::InVariable<int> size("boundary::late::size", thePackage, Zu::InVariableBase::_dummy);

template <> void Zu::InInit<boundary::latePackage>::performInitialize()
{
    boundary::say(size.isValid() ? "late up, with a size" : "late up, without a size");
    InSingleton<boundary::Ledger>::getInstance().write("late");
}

template <> void Zu::InInit<boundary::latePackage>::performFinalize()
{
    boundary::say("late down");
}
