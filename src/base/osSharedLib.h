/// @file
/// Shared libraries loaded at run time.

#ifndef ZU_BASE_OSSHAREDLIB_H
#define ZU_BASE_OSSHAREDLIB_H

#include "baseApi.h"
#include "objPtr.h"
#include "osFilePath.h"

namespace Zu
{

/// A shared library that was loaded at run time. It stays loaded to the end of the process, also
/// when the object ends. A library that declares packages is loaded inside an InReinitGuard.
///
/// A static object of the library that raises an exception while it is loaded ends the process on
/// Windows and can leave the loader locked on Linux: libraries of the family build none that do.
class ZU_BASE_API OsSharedLib
{
public:
    OsSharedLib(const OsSharedLib&) = delete;
    OsSharedLib& operator=(const OsSharedLib&) = delete;
    virtual ~OsSharedLib();

    /// The address of the library's own function of this name; the caller casts it to its type.
    /// Functions of the libraries that it needs are not found. Raises
    /// OsSharedLibEx::ExFunctionNotFound, also for null.
    virtual void* getFunction(const char* name) = 0;

    /// The path that was opened.
    const OsFilePath& getPath() const;

    /// Loads a library; a path without a separator is looked up as the system does for libraries.
    /// Raises OsSharedLibEx::ExCantOpenLib.
    static ObjPtrRet<OsSharedLib> open(const OsFilePath& path);

    /// What the file names of shared libraries end in: ".dll" on Windows, ".so" on Linux.
    static const char* getSuffix();

protected:
    /// The path is copied.
    explicit OsSharedLib(const OsFilePath& path);

private:
    OsFilePath _path;
};

} // namespace Zu

#endif
