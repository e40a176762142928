/// @file
/// The exception that replaces one that was not allowed to pass.

#ifndef ZU_BASE_EXBADEXCEPTION_H
#define ZU_BASE_EXBADEXCEPTION_H

#include "exBase.h"

#include <exception>

namespace Zu
{

/// An exception tried to leave a place that must not let it pass. The reason is "Invalid exception
/// thrown."; the what() of the standard base is the runtime's own text and can only be reached by a
/// qualified call.
class ZU_BASE_API ExBadException : public ExBase, public std::bad_exception
{
public:
    ExBadException(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
