/// @file
/// The class template from which packages are written.

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
/// Packages are identified only by the run-time type of their InInit, never by pointer or name.
/// Types are compared by value, since each module may have its own `type_info` of the same type.
template <class T> class ZU_BASE_VISIBLE InInit : public InPackageInit
{
public:
    /// Written for each package: names it, registers it and declares its dependencies.
    InInit();

    /// The run-time type that identifies this package.
    static const std::type_info* getType()
    {
        return &typeid(InInit);
    }

    /// Written for each package.
    void performInitialize() override;

    /// Written for each package.
    void performFinalize() override;

    void setInitialized(bool initialized) override
    {
        _initialized = initialized;
    }

private:
    // For debuggers: no code reads it.
    static inline bool _initialized = false;
};

} // namespace Zu

#endif
