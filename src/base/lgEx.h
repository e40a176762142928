/// @file
/// The exceptions of the logger.

#ifndef ZU_BASE_LGEX_H
#define ZU_BASE_LGEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of the logger.
class ZU_BASE_API LgEx : public ExBase
{
public:
    class InvalidLevelString;

protected:
    LgEx(const char* file, int line);
};

/// A text that is not a level: "Invalid level string specified: <text>".
class ZU_BASE_API LgEx::InvalidLevelString : public std::invalid_argument, public LgEx
{
public:
    /// `text` is the invalid text.
    InvalidLevelString(const char* file, int line, const char* text);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
