/// @file
/// Registration of build records with the checks that the process has chosen.

#ifndef ZU_BASE_DBGBUILDINFOUTIL_H
#define ZU_BASE_DBGBUILDINFOUTIL_H

#include "baseApi.h"
#include "dbgBuildInfo.h"
#include "objPtr.h"

namespace Zu
{

/// The operations that a library of the family calls. The root package of a library registers its
/// record when it starts:
///
/// @code
/// template <> void Zu::InInit<sample::root>::performInitialize()
/// {
///     Zu::DbgBuildInfoUtil::registerInfo(
///         Zu::ObjPtr<Zu::DbgBuildInfo>(new Zu::DbgTextBuildInfo(text)));
/// }
/// @endcode
///
/// When the package "debugging" starts, ZU_BUILDINFO_NO_VALIDATE switches the check of versions off
/// and ZU_BUILDINFO_CHECK_STAMPS switches that of stamps on, each if it is a number other than 0.
///
/// Thread-safety: the same as for DbgBuildInfoMgr.
class ZU_BASE_API DbgBuildInfoUtil
{
public:
    DbgBuildInfoUtil() = delete;

    /// Whether a different version is refused; initially true.
    static void setValidateVersions(bool validateVersions);

    /// Whether a different build stamp is refused; initially false.
    static void setCheckStamps(bool checkStamps);

    /// Calls DbgBuildInfoMgr::registerInfo() with the current switches.
    static void registerInfo(ObjPtr<DbgBuildInfo> info);

    /// Loads the module "libZU<name>" with the platform's suffix, as OsSharedLib::open() finds it,
    /// and registers the record that its function "getBuildInfo" returns. ZU_EXPORT_BUILD_INFO
    /// defines that function. The module stays loaded. Raises OsSharedLibEx::ExCantOpenLib,
    /// OsSharedLibEx::ExFunctionNotFound, and whatever registerInfo() raises. A module that
    /// declares packages must be loaded inside an InReinitGuard.
    static void registerModule(const char* name);

private:
    static bool _validateVersions;
    static bool _checkStamps;
};

} // namespace Zu

#endif
