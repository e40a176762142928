/// @file
/// The build records of the process.

#ifndef ZU_BASE_DBGBUILDINFOMGR_H
#define ZU_BASE_DBGBUILDINFOMGR_H

#include "baseApi.h"
#include "dbgBuildInfo.h"
#include "inInit.h"
#include "objPtr.h"

#include <iosfwd>

namespace Zu
{

/// Keeps the build records by their API, and refuses what doesn't fit the first of its API: a
/// wrongly mixed installation fails at start-up with a message, and not at some later call. The
/// package "debugging" drops all records at its end.
///
/// Thread-safety: registration belongs to start-up, on one thread; printing only reads.
class ZU_BASE_API DbgBuildInfoMgr
{
    friend class InInit<ZuInit::debugging>;

public:
    DbgBuildInfoMgr() = delete;

    /// Takes a record, after a look at the first one of its API:
    /// - Another major or minor version is logged at level Fatal Error. With `validateVersions`
    ///   it raises DbgBuildInfoEx::ExVersionMismatch; deliberately it is logged in either case.
    /// - With `checkStamps`, another short build stamp is logged and raises
    ///   DbgBuildInfoEx::ExBuildStampMismatch.
    ///
    /// What raises is not kept. A null record is fatal, as is a mismatch before the package
    /// "debugging" has started: it could not be logged.
    static void registerInfo(ObjPtr<DbgBuildInfo> info, bool validateVersions, bool checkStamps);

    /// Takes the application's record. Raises DbgBuildInfoEx::ExAppAlreadyRegistered if there is
    /// one; a null record is fatal.
    static void registerAppInfo(ObjPtr<DbgBuildInfo> info);

    /// The application's record; good until the package "debugging" ends. Raises
    /// DbgBuildInfoEx::ExAppNotRegistered if there is none.
    static const DbgBuildInfo& getAppInfo();

    /// Writes the application's banner, a line, or two if `verbose`; without a record "Unknown
    /// application name / version."
    static std::ostream& printAppInfo(std::ostream& os, bool verbose);

    /// Writes the banner and what is registered for each API, in the order of registration; the
    /// order of the APIs is open.
    static std::ostream& printBuildInfo(std::ostream& os, bool verbose);

private:
    static void init();
    static void fini();
};

} // namespace Zu

#endif
