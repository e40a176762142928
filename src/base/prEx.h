/// @file
/// The exceptions of performance counters.

#ifndef ZU_BASE_PREX_H
#define ZU_BASE_PREX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of performance counters.
class ZU_BASE_API PrEx : public ExBase
{
public:
    class ExUnsupported;
    class ExBadCounterIndex;
    class ExBadCounterInstance;
    class ExBadCounterObjectIndex;

protected:
    PrEx(const char* file, int line);
};

/// "Functionality unsupported by profiling package."
class ZU_BASE_API PrEx::ExUnsupported : public std::runtime_error, public PrEx
{
public:
    ExUnsupported(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "Request with illegal counter index <index>.", the index as a signed number.
class ZU_BASE_API PrEx::ExBadCounterIndex : public std::runtime_error, public PrEx
{
public:
    /// `index` is the one that was refused.
    ExBadCounterIndex(const char* file, int line, unsigned int index);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "Request with illegal counter instance name <name>."
class ZU_BASE_API PrEx::ExBadCounterInstance : public std::runtime_error, public PrEx
{
public:
    /// `name` is the one that was refused; null counts as empty.
    ExBadCounterInstance(const char* file, int line, const char* name);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "Request with illegal counter object index <index>.", the index as a signed number.
class ZU_BASE_API PrEx::ExBadCounterObjectIndex : public std::runtime_error, public PrEx
{
public:
    /// `index` is the one that was refused.
    ExBadCounterObjectIndex(const char* file, int line, unsigned int index);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
