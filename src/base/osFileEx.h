/// @file
/// The exceptions of the file classes.

#ifndef ZU_BASE_OSFILEEX_H
#define ZU_BASE_OSFILEEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// The scope of the file classes' exceptions, but not their base class. A path in a reason is cut
/// to 256 characters; a null one counts as empty.
class ZU_BASE_API OsFileEx
{
public:
    OsFileEx() = delete;

    class ExSeparatorNotAllowed;
    class ExIllegalPathConcat;
    class ExHomeNotDefined;
    class ExFileExists;
    class ExNullFilePath;
    class ExInvalidPath;
    class ExPathNotWritable;
    class ExNoRemoteUnbuffered;
};

/// A path element contains a separator: "Separator not allowed in path elements."
class ZU_BASE_API OsFileEx::ExSeparatorNotAllowed : public std::invalid_argument, public ExBase
{
public:
    ExSeparatorNotAllowed(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// An absolute path is appended: "Attempt to concatenate absolute path."
class ZU_BASE_API OsFileEx::ExIllegalPathConcat : public std::runtime_error, public ExBase
{
public:
    ExIllegalPathConcat(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// The variable HOME is not set: "Cannot get home directory from the environment."
class ZU_BASE_API OsFileEx::ExHomeNotDefined : public std::runtime_error, public ExBase
{
public:
    ExHomeNotDefined(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A file that must be new exists: "File already exists."
class ZU_BASE_API OsFileEx::ExFileExists : public std::runtime_error, public ExBase
{
public:
    ExFileExists(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A name is null or empty: "File has null file path."
class ZU_BASE_API OsFileEx::ExNullFilePath : public std::runtime_error, public ExBase
{
public:
    ExNullFilePath(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A path that can't be used: "Invalid path: '<path>'."
class ZU_BASE_API OsFileEx::ExInvalidPath : public std::invalid_argument, public ExBase
{
public:
    /// `path` is the one that was refused.
    ExInvalidPath(const char* file, int line, const char* path);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A path that can't be written: "Invalid path: '<path>'.", deliberately the text of
/// ExInvalidPath.
class ZU_BASE_API OsFileEx::ExPathNotWritable : public std::invalid_argument, public ExBase
{
public:
    /// `path` is the one that was refused.
    ExPathNotWritable(const char* file, int line, const char* path);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "Unbuffered IO is impossible on a remote drive: '<path>' is a remote path."
class ZU_BASE_API OsFileEx::ExNoRemoteUnbuffered : public std::runtime_error, public ExBase
{
public:
    /// `path` is the one on a volume of another machine.
    ExNoRemoteUnbuffered(const char* file, int line, const char* path);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
