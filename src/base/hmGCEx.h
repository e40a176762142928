/// @file
/// The exception of the leak checker.

#ifndef ZU_BASE_HMGCEX_H
#define ZU_BASE_HMGCEX_H

#include "exBase.h"

namespace Zu
{

/// The scope of the leak checker's exception; it is no class of its own.
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

    /// The reason: there is no standard class among the bases to give it.
    virtual const char* what() const noexcept;
};

} // namespace Zu

#endif
