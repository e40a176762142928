#include "base/dbgBuildInfoEx.h"

#include "base/exDefine.h"

namespace Zu
{

namespace
{

constexpr int NAME_CUT = 64;

} // namespace

DbgBuildInfoEx::DbgBuildInfoEx(const char* file, int line) : ExBase(file, line) {}

DbgBuildInfoEx::ExVersionMismatch::ExVersionMismatch(const char* file, int line,
                                                     const char* apiName, int apiMajor,
                                                     int apiMinor, const char* libraryName,
                                                     int libraryMajor, int libraryMinor)
    : DbgBuildInfoEx(file, line), std::runtime_error("")
{
    const ExText text("Version mismatch, API '%.*s' v%d.%d: library '%.*s' at v%d.%d.", NAME_CUT,
                      ExText::orEmpty(apiName), apiMajor, apiMinor, NAME_CUT,
                      ExText::orEmpty(libraryName), libraryMajor, libraryMinor);
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(DbgBuildInfoEx::ExVersionMismatch)

DbgBuildInfoEx::ExBuildStampMismatch::ExBuildStampMismatch(const char* file, int line,
                                                           const char* apiName,
                                                           const char* apiStamp,
                                                           const char* libraryName,
                                                           const char* libraryStamp)
    : DbgBuildInfoEx(file, line), std::runtime_error("")
{
    const ExText text(
        "Build stamp mismatch, API '%.*s' build %.*s: library '%.*s' using build %.*s.", NAME_CUT,
        ExText::orEmpty(apiName), NAME_CUT, ExText::orEmpty(apiStamp), NAME_CUT,
        ExText::orEmpty(libraryName), NAME_CUT, ExText::orEmpty(libraryStamp));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(DbgBuildInfoEx::ExBuildStampMismatch)

DbgBuildInfoEx::ExAppAlreadyRegistered::ExAppAlreadyRegistered(const char* file, int line)
    : DbgBuildInfoEx(file, line), std::runtime_error("")
{
    setReason("Application-level build info already registered.");
}

ZU_EX_WHAT_AND_CLONE(DbgBuildInfoEx::ExAppAlreadyRegistered)

DbgBuildInfoEx::ExAppNotRegistered::ExAppNotRegistered(const char* file, int line)
    : DbgBuildInfoEx(file, line), std::runtime_error("")
{
    setReason("No application-level build info available.");
}

ZU_EX_WHAT_AND_CLONE(DbgBuildInfoEx::ExAppNotRegistered)

} // namespace Zu
