/// @file
/// Shared libraries loaded at run time.

#ifndef ZU_BASE_OSSHAREDLIB_H
#define ZU_BASE_OSSHAREDLIB_H

#include "baseApi.h"
#include "objPtr.h"
#include "osFilePath.h"

namespace Zu
{

/// A shared library that was loaded at run time. It stays loaded to the end of the process, even
/// after the object is destroyed. Load a library that declares packages inside an InReinitGuard.
///
/// If a static object of the library raises an exception while the library is loaded, the process
/// ends on Windows, and the loader can stay locked on Linux. Libraries of the family have no such
/// objects.
class ZU_BASE_API OsSharedLib
{
public:
    OsSharedLib(const OsSharedLib&) = delete;
    OsSharedLib& operator=(const OsSharedLib&) = delete;
    virtual ~OsSharedLib();

    /// The address of the function of this name in the library itself; the caller casts it to its
    /// type. Functions of the libraries that it depends on are not found. Raises
    /// OsSharedLibEx::ExFunctionNotFound, also for null.
    virtual void* getFunction(const char* name) = 0;

    /// The path that was opened.
    const OsFilePath& getPath() const;

    /// Loads a library; a path without a separator is looked up as the system does for libraries.
    /// Raises OsSharedLibEx::ExCantOpenLib.
    static ObjPtrRet<OsSharedLib> open(const OsFilePath& path);

    /// The suffix of the file names of shared libraries: ".dll" on Windows, ".so" on Linux.
    static const char* getSuffix();

protected:
    /// The path is copied.
    explicit OsSharedLib(const OsFilePath& path);

private:
    OsFilePath _path;
};

} // namespace Zu

#endif
