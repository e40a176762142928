// A program with a package and a variable of its own.
#include "base/base.h"
#include <iostream>

namespace greeting
{
struct package // an empty class names the package
{
};
} // namespace greeting

// The package: a name, what it needs, and what it does when it starts and stops.
template <> Zu::InInit<greeting::package>::InInit() : InPackageInit("greeting")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}
template <> void Zu::InInit<greeting::package>::performInitialize() {}
template <> void Zu::InInit<greeting::package>::performFinalize() {}
static Zu::InInit<greeting::package> thePackage;

// The variable and where its value may come from: an option, the environment, a default.
static Zu::InArgAlias nameOption("n:", "name to greet, from the command line");
static Zu::InEnvAlias nameEnv("GREETING_NAME", "name to greet, from the environment");
static Zu::InDefAlias nameDefault("world", "name to greet when nobody says");
static Zu::InVariable<const char*> name("greeting::name", thePackage, nameOption, nameEnv,
                                        nameDefault);

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    std::cout << "Hello, " << name.getValue() << "! (" << name.initSource() << ")\n";
}
