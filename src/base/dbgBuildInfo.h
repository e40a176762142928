/// @file
/// What a library of the family says about its build.

#ifndef ZU_BASE_DBGBUILDINFO_H
#define ZU_BASE_DBGBUILDINFO_H

#include "baseApi.h"

namespace Zu
{

/// A build record. Libraries of the same API are held against each other by it, and the application
/// has one of its own. The texts stay owned by the record and live as long as it.
class ZU_BASE_API DbgBuildInfo
{
public:
    DbgBuildInfo() = default;
    DbgBuildInfo(const DbgBuildInfo&) = default;
    DbgBuildInfo& operator=(const DbgBuildInfo&) = default;

    /// The API that the library implements; records of one API form a group.
    virtual const char* getApiName() const = 0;

    /// @{
    /// The version of the API; records of one API must agree in both numbers.
    virtual int getMajorVersion() const = 0;
    virtual int getMinorVersion() const = 0;
    /// @}

    /// What the version is called: "beta".
    virtual const char* getVersionLabel() const = 0;

    /// What the library is called; messages have the short form, which is not verbose.
    virtual const char* getLibraryName(bool verbose) const = 0;

    /// Which build it is; the short form, which is not verbose, is what stamps are compared by.
    virtual const char* getBuildStamp(bool verbose) const = 0;

    /// The day, as `__DATE__` gives it: "May  8 2012".
    virtual const char* getBuildDate(bool verbose) const = 0;

    /// Platform and kind of the build, in words of the build system.
    virtual const char* getBuildConfiguration(bool verbose) const = 0;

    /// The domain and the user of the build, as `BUILDHOST\builder`.
    virtual const char* getBuiltBy(bool verbose) const = 0;

    /// For people; the library doesn't read them.
    virtual const char* getBuildNotes(bool verbose) const = 0;

    // Deliberately the last: others have been compiled against this order.
    virtual ~DbgBuildInfo();
};

} // namespace Zu

#endif
