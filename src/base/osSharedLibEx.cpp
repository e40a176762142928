#include "base/osSharedLibEx.h"

#include "base/exDefine.h"

namespace Zu
{

namespace
{

constexpr int PATH_CUT = 256;
constexpr int MESSAGE_CUT = 512;
constexpr int FUNCTION_CUT = 64;

} // namespace

OsSharedLibEx::OsSharedLibEx(const char* file, int line) : ExBase(file, line) {}

OsSharedLibEx::ExCantOpenLib::ExCantOpenLib(const char* file, int line, const char* path,
                                            const char* message)
    : OsSharedLibEx(file, line), std::runtime_error("")
{
    const ExText text("Can't open dynamic library '%.*s': %.*s.", PATH_CUT, ExText::orEmpty(path),
                      MESSAGE_CUT, ExText::orEmpty(message));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(OsSharedLibEx::ExCantOpenLib)

OsSharedLibEx::ExFunctionNotFound::ExFunctionNotFound(const char* file, int line, const char* path,
                                                      const char* name)
    : OsSharedLibEx(file, line), std::runtime_error("")
{
    const ExText text("Function '%.*s' not found in dynamic library '%.*s'.", FUNCTION_CUT,
                      ExText::orEmpty(name), PATH_CUT, ExText::orEmpty(path));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(OsSharedLibEx::ExFunctionNotFound)

} // namespace Zu
