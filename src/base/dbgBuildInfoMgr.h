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

/// Keeps the build records by API and refuses a record that does not match the first one of its
/// API. A wrongly mixed installation thus fails at start-up with a message and not at some later
/// call. The package "debugging" drops all records when it ends.
///
/// Thread-safety: registration belongs to start-up, on one thread; printing only reads.
class ZU_BASE_API DbgBuildInfoMgr
{
    friend class InInit<ZuInit::debugging>;

public:
    DbgBuildInfoMgr() = delete;

    /// Takes a record after comparing it with the first one of its API:
    /// - A different major or minor version is logged at level Fatal Error, deliberately in either
    ///   case. With `validateVersions` it also raises DbgBuildInfoEx::ExVersionMismatch.
    /// - With `checkStamps`, a different short build stamp is logged and raises
    ///   DbgBuildInfoEx::ExBuildStampMismatch.
    ///
    /// A record that raises is not kept. A null record is fatal. So is a mismatch before the
    /// package "debugging" has started, because it could not be logged.
    static void registerInfo(ObjPtr<DbgBuildInfo> info, bool validateVersions, bool checkStamps);

    /// Takes the application's record. Raises DbgBuildInfoEx::ExAppAlreadyRegistered if there is
    /// one; a null record is fatal.
    static void registerAppInfo(ObjPtr<DbgBuildInfo> info);

    /// The application's record, valid until the package "debugging" ends. Raises
    /// DbgBuildInfoEx::ExAppNotRegistered if there is none.
    static const DbgBuildInfo& getAppInfo();

    /// Writes the application's banner: one line, or two if `verbose`. Without a record it writes
    /// "Unknown application name / version."
    static std::ostream& printAppInfo(std::ostream& os, bool verbose);

    /// Writes the banner and the records of each API in the order of registration. The order of the
    /// APIs is unspecified.
    static std::ostream& printBuildInfo(std::ostream& os, bool verbose);

private:
    static void init();
    static void fini();
};

} // namespace Zu

#endif
