#include "base/exSysError.h"

#include "base/exDefine.h"
#include "base/exSystemCode.h"

#include <cerrno>
#include <cstring>

namespace Zu
{

namespace
{

void cutIfLineEnd(char& character)
{
    if (character == '\r' || character == '\n') character = '\0';
}

} // namespace

void cutLineEnd(char* text)
{
    const std::size_t length = std::strlen(text);
    if (length >= 1) cutIfLineEnd(text[length - 1]);
    if (length >= 2) cutIfLineEnd(text[length - 2]);
}

ExSysError::ExSysError(const char* file, int line) : ExBase(file, line), std::runtime_error("") {}

ExSysErrorANSI::ExSysErrorANSI(const char* file, int line)
    : ExBase(file, line), ExSysError(file, line), _error(errno)
{
    setReason(errnoText(_error));
}

int ExSysErrorANSI::getError() const
{
    return _error;
}

ZU_EX_WHAT_AND_CLONE(ExSysErrorANSI)

ExSysErrorWindows::ExSysErrorWindows(const char* file, int line)
    : ExBase(file, line), ExSysError(file, line), _errorCode(lastSystemCode())
{
    char text[1024];
    systemCodeText(_errorCode, text, sizeof text);
    cutLineEnd(text);
    setReason(*text ? text : ExText("Unknown error %d", _errorCode).get());
}

int ExSysErrorWindows::getErrorCode() const
{
    return _errorCode;
}

ZU_EX_WHAT_AND_CLONE(ExSysErrorWindows)

} // namespace Zu
