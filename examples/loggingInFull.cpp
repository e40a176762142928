// A program that logs, in full: the package, its group, and the service, each by itself.
#include "app/lgService.h"
#include "base/base.h"

namespace shop
{
struct package
{
};
} // namespace shop

// The group that the statements belong to; its levels are those of the major group "Shop".
ZU_DEFINE_LOG_GROUP(Orders);

template <> Zu::InInit<shop::package>::InInit() : InPackageInit("shop")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}
template <> void Zu::InInit<shop::package>::performInitialize()
{
    ZU_START_LOG_GROUP("Shop", Orders);
}
template <> void Zu::InInit<shop::package>::performFinalize()
{
    ZU_STOP_LOG_GROUP(Orders);
}
static Zu::InInit<shop::package> thePackage;

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    ZU_LOG_WARNING(Orders, "goes to standard output: no service runs yet");
    const Zu::LgService service;
    for (int order = 1; order <= 3; ++order)
        ZU_LOG_WARNING(Orders, "order " << order << " is late by " << order * 0.5 << " days");
    ZU_LOG_INFORMATIONAL(Orders, "is not even looked at, unless ZU_LOG_GROUPS says so");
}
