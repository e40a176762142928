// A module that is loaded before start-up and declares a package, aliases and a variable.

#include "boundaryModule.h"

#include "base/inInit.h"
#include "base/inVariable.h"

template <> Zu::InInit<boundary::earlyPackage>::InInit() : InPackageInit("early")
{
    registerPackage();
    addDependency(InInit<boundary::clientPackage>::getType());
}

static Zu::InInit<boundary::earlyPackage> thePackage;
static Zu::InArgAlias sizeOption("e:", "size, from an option");
static Zu::InEnvAlias sizeEnv("BOUNDARY_EARLY_SIZE", "size, from the environment");
static Zu::InDefAlias sizeDefault("11", "usual size");
static Zu::InVariable<int> size("boundary::early::size", thePackage, sizeOption, sizeEnv,
                                sizeDefault);

template <> void Zu::InInit<boundary::earlyPackage>::performInitialize()
{
    boundary::say("early up, size " + std::to_string(size.getValue()) + " from " +
                  size.initSource());
    InSingleton<boundary::Ledger>::getInstance().write("early");
}

template <> void Zu::InInit<boundary::earlyPackage>::performFinalize()
{
    boundary::say("early down");
}
