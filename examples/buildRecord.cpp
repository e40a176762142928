// A library of the family that registers its build.
#include "base/base.h"
#include <iostream>

namespace shop
{

struct root
{
};

constexpr Zu::DbgBuildText BUILD = {"Shop", 1, 4, "beta", "libShop", "Shop_12", "S. 12", __DATE__};

} // namespace shop

template <> Zu::InInit<shop::root>::InInit() : InPackageInit("shop")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}
template <> void Zu::InInit<shop::root>::performInitialize()
{
    Zu::DbgBuildInfoUtil::registerInfo(
        Zu::ObjPtr<Zu::DbgBuildInfo>(new Zu::DbgTextBuildInfo(shop::BUILD)));
}
template <> void Zu::InInit<shop::root>::performFinalize() {}
static Zu::InInit<shop::root> thePackage;

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    Zu::DbgBuildInfoMgr::printBuildInfo(std::cout, false);
}
