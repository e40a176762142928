/// @file
/// What a library of the family reports about its build.

#ifndef ZU_BASE_DBGBUILDINFO_H
#define ZU_BASE_DBGBUILDINFO_H

#include "baseApi.h"

namespace Zu
{

/// A build record. Libraries of the same API are compared by their records, and the application has
/// a record of its own. The record owns its texts, which live as long as it does.
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

    /// The label of the version, such as "beta".
    virtual const char* getVersionLabel() const = 0;

    /// The name of the library. Messages use the short form, which is the one that is not verbose.
    virtual const char* getLibraryName(bool verbose) const = 0;

    /// Identifies the build. Stamps are compared by the short form, which is the one that is not
    /// verbose.
    virtual const char* getBuildStamp(bool verbose) const = 0;

    /// The date of the build in the format of `__DATE__`: "May  8 2012".
    virtual const char* getBuildDate(bool verbose) const = 0;

    /// The platform and the kind of build, in the build system's terms.
    virtual const char* getBuildConfiguration(bool verbose) const = 0;

    /// The domain and the user of the build, as `BUILDHOST\builder`.
    virtual const char* getBuiltBy(bool verbose) const = 0;

    /// Notes for people; the library does not interpret them.
    virtual const char* getBuildNotes(bool verbose) const = 0;

    // Deliberately the last: the order of the virtual functions is frozen, see
    // docs/compatibility.md.
    virtual ~DbgBuildInfo();
};

} // namespace Zu

#endif
