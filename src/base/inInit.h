/// @file
/// The form in which packages are written.

#ifndef ZU_BASE_ININIT_H
#define ZU_BASE_ININIT_H

#include "baseApi.h"
#include "inPackageInit.h"
#include "zuInit.h"

#include <typeinfo>

namespace Zu
{

/// The package with the tag `T`, an empty class. A client writes three members for its tag and
/// one static object:
///
/// @code
/// template <> Zu::InInit<my::tag>::InInit() : InPackageInit("my")
/// {
///     registerPackage();
///     addDependency(InInit<ZuInit::base>::getType());
/// }
/// template <> void Zu::InInit<my::tag>::performInitialize() {}
/// template <> void Zu::InInit<my::tag>::performFinalize() {}
///
/// static Zu::InInit<my::tag> thePackage;
/// @endcode
///
/// Packages are told apart by the run-time type of their InInit alone, never by pointer or name,
/// and types are compared by value: each module has its own `type_info` of one type.
template <class T> class ZU_BASE_VISIBLE InInit : public InPackageInit
{
public:
    /// Written per package: names it, registers it and declares its dependencies.
    InInit();

    /// The run-time type that stands for this package.
    static const std::type_info* getType()
    {
        return &typeid(InInit);
    }

    /// Written per package.
    void performInitialize() override;

    /// Written per package.
    void performFinalize() override;

    void setInitialized(bool initialized) override
    {
        _initialized = initialized;
    }

private:
    static inline bool _initialized = false;
};

} // namespace Zu

#endif
