// A program whose log service is set up by itself, by the environment and by the command line.
#include "app/lgService.h"
#include "base/base.h"
#include <iostream>
#include <string>

namespace shop
{
struct package
{
};
} // namespace shop

template <> Zu::InInit<shop::package>::InInit() : InPackageInit("shop")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}
template <> void Zu::InInit<shop::package>::performInitialize() {}
template <> void Zu::InInit<shop::package>::performFinalize() {}
static Zu::InInit<shop::package> thePackage;

static Zu::InArgAlias logOption("l:", "directory of the log files");
static Zu::InVariable<const char*> logDirectory("shop::logs", thePackage, logOption);

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    Zu::LgServiceOptions options;
    options._eventsName = "shop.log"; // the program's own values,
    options._lineForm = Zu::LgServiceOptions::LineForm::Utc;
    options._rotateSize = 64 << 20;
    options.readEnvironment(); // those of ZU_LOG_SERVICE_ROTATE_SIZE and others,
    std::string error;
    if (logDirectory.isValid() && !options.set("directory", logDirectory.getValue(), error))
        std::cerr << error << "\n"; // and the option -l
    const Zu::LgService service(options);
    service.displaySetup();
}
