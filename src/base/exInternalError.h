/// @file
/// The exception for a failed check and for errors without a family of their own.

#ifndef ZU_BASE_EXINTERNALERROR_H
#define ZU_BASE_EXINTERNALERROR_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// A failed assertion, or an error without a class of its own.
class ZU_BASE_API ExInternalError : public std::runtime_error, public ExBase
{
public:
    /// A null `reason` leaves the reason empty.
    ExInternalError(const char* file, int line, const char* reason);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
