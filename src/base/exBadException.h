/// @file
/// The exception that stands for one which was not allowed to pass.

#ifndef ZU_BASE_EXBADEXCEPTION_H
#define ZU_BASE_EXBADEXCEPTION_H

#include "exBase.h"

#include <exception>

namespace Zu
{

/// An exception passed a place where it must not. The reason is "Invalid exception thrown."; the
/// text of the standard part is the runtime's own and can only be reached by a qualified call.
class ZU_BASE_API ExBadException : public ExBase, public std::bad_exception
{
public:
    ExBadException(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
