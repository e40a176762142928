/// @file
/// Registration of build records with the process's own choice of checks.

#ifndef ZU_BASE_DBGBUILDINFOUTIL_H
#define ZU_BASE_DBGBUILDINFOUTIL_H

#include "baseApi.h"
#include "dbgBuildInfo.h"
#include "objPtr.h"

namespace Zu
{

/// What a library of the family calls. The root package of a library registers its record when it
/// starts:
///
/// @code
/// template <> void Zu::InInit<sample::root>::performInitialize()
/// {
///     Zu::DbgBuildInfoUtil::registerInfo(
///         Zu::ObjPtr<Zu::DbgBuildInfo>(new Zu::DbgTextBuildInfo(text)));
/// }
/// @endcode
///
/// The variables ZU_BUILDINFO_NO_VALIDATE and ZU_BUILDINFO_CHECK_STAMPS, if they are numbers other
/// than 0, change the switches when the package "debugging" starts.
///
/// Thread-safety: as DbgBuildInfoMgr.
class ZU_BASE_API DbgBuildInfoUtil
{
public:
    DbgBuildInfoUtil() = delete;

    /// Whether another version is refused; true at first.
    static void setValidateVersions(bool validateVersions);

    /// Whether another build stamp is refused; false at first.
    static void setCheckStamps(bool checkStamps);

    /// DbgBuildInfoMgr::registerInfo() with the switches as they are.
    static void registerInfo(ObjPtr<DbgBuildInfo> info);

    /// Loads the module "libZU<name>" with the platform's suffix, as OsSharedLib::open() finds it,
    /// and registers the record that its function "getBuildInfo" gives; ZU_EXPORT_BUILD_INFO makes
    /// that. The module stays loaded. Raises OsSharedLibEx::ExCantOpenLib,
    /// OsSharedLibEx::ExFunctionNotFound, and what registerInfo() does. A module that declares
    /// packages is loaded inside an InReinitGuard.
    static void registerModule(const char* name);

private:
    static bool _validateVersions;
    static bool _checkStamps;
};

} // namespace Zu

#endif
