/// @file
/// The exception of the leak checker.

#ifndef ZU_BASE_HMGCEX_H
#define ZU_BASE_HMGCEX_H

#include "exBase.h"

namespace Zu
{

/// Only a scope for the leak checker's exception, not a base class.
class ZU_BASE_API HmGCEx
{
public:
    HmGCEx() = delete;

    class ExGarbageDetected;
};

/// "Garbage Collector has detected leaks."
class ZU_BASE_API HmGCEx::ExGarbageDetected : public ExBase
{
public:
    ExGarbageDetected(const char* file, int line);

    ExBase* clone() const override;

    /// The reason. It is declared here because no base is a standard exception class.
    virtual const char* what() const noexcept;
};

} // namespace Zu

#endif
