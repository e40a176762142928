/// @file
/// The exceptions of build records.

#ifndef ZU_BASE_DBGBUILDINFOEX_H
#define ZU_BASE_DBGBUILDINFOEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of build records. Names and stamps in a reason are truncated to 64
/// characters; a null one counts as empty.
class ZU_BASE_API DbgBuildInfoEx : public ExBase
{
public:
    class ExVersionMismatch;
    class ExBuildStampMismatch;
    class ExAppAlreadyRegistered;
    class ExAppNotRegistered;

protected:
    DbgBuildInfoEx(const char* file, int line);
};

/// A library has a different version of its API from the first one registered:
/// "Version mismatch, API '<api>' v<major>.<minor>: library '<library>' at v<major>.<minor>."
class ZU_BASE_API DbgBuildInfoEx::ExVersionMismatch : public DbgBuildInfoEx,
                                                      public std::runtime_error
{
public:
    /// The API with the version of its first library, and the mismatching library with its own
    /// version.
    ExVersionMismatch(const char* file, int line, const char* apiName, int apiMajor, int apiMinor,
                      const char* libraryName, int libraryMajor, int libraryMinor);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A library comes from a different build than the first one registered:
/// "Build stamp mismatch, API '<api>' build <stamp>: library '<library>' using build <stamp>."
class ZU_BASE_API DbgBuildInfoEx::ExBuildStampMismatch : public DbgBuildInfoEx,
                                                         public std::runtime_error
{
public:
    /// The API with the short stamp of its first library, and the mismatching library with its own
    /// stamp.
    ExBuildStampMismatch(const char* file, int line, const char* apiName, const char* apiStamp,
                         const char* libraryName, const char* libraryStamp);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A second record for the application: "Application-level build info already registered."
class ZU_BASE_API DbgBuildInfoEx::ExAppAlreadyRegistered : public DbgBuildInfoEx,
                                                           public std::runtime_error
{
public:
    ExAppAlreadyRegistered(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// The application's record was requested, but there is none:
/// "No application-level build info available."
class ZU_BASE_API DbgBuildInfoEx::ExAppNotRegistered : public DbgBuildInfoEx,
                                                       public std::runtime_error
{
public:
    ExAppNotRegistered(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
