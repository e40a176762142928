#include "base/osFileEx.h"

#include "base/exDefine.h"

namespace Zu
{

namespace
{

constexpr int PATH_CUT = 256;

} // namespace

OsFileEx::ExSeparatorNotAllowed::ExSeparatorNotAllowed(const char* file, int line)
    : std::invalid_argument(""), ExBase(file, line)
{
    setReason("Separator not allowed in path elements.");
}

ZU_EX_WHAT_AND_CLONE(OsFileEx::ExSeparatorNotAllowed)

OsFileEx::ExIllegalPathConcat::ExIllegalPathConcat(const char* file, int line)
    : std::runtime_error(""), ExBase(file, line)
{
    setReason("Attempt to concatenate absolute path.");
}

ZU_EX_WHAT_AND_CLONE(OsFileEx::ExIllegalPathConcat)

OsFileEx::ExHomeNotDefined::ExHomeNotDefined(const char* file, int line)
    : std::runtime_error(""), ExBase(file, line)
{
    setReason("Cannot get home directory from the environment.");
}

ZU_EX_WHAT_AND_CLONE(OsFileEx::ExHomeNotDefined)

OsFileEx::ExFileExists::ExFileExists(const char* file, int line)
    : std::runtime_error(""), ExBase(file, line)
{
    setReason("File already exists.");
}

ZU_EX_WHAT_AND_CLONE(OsFileEx::ExFileExists)

OsFileEx::ExNullFilePath::ExNullFilePath(const char* file, int line)
    : std::runtime_error(""), ExBase(file, line)
{
    setReason("File has null file path.");
}

ZU_EX_WHAT_AND_CLONE(OsFileEx::ExNullFilePath)

OsFileEx::ExInvalidPath::ExInvalidPath(const char* file, int line, const char* path)
    : std::invalid_argument(""), ExBase(file, line)
{
    const ExText text("Invalid path: '%.*s'.", PATH_CUT, ExText::orEmpty(path));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(OsFileEx::ExInvalidPath)

OsFileEx::ExPathNotWritable::ExPathNotWritable(const char* file, int line, const char* path)
    : std::invalid_argument(""), ExBase(file, line)
{
    const ExText text("Invalid path: '%.*s'.", PATH_CUT, ExText::orEmpty(path));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(OsFileEx::ExPathNotWritable)

OsFileEx::ExNoRemoteUnbuffered::ExNoRemoteUnbuffered(const char* file, int line, const char* path)
    : std::runtime_error(""), ExBase(file, line)
{
    const ExText text("Unbuffered IO is impossible on a remote drive: '%.*s' is a remote path.",
                      PATH_CUT, ExText::orEmpty(path));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(OsFileEx::ExNoRemoteUnbuffered)

} // namespace Zu
