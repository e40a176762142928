/// @file
/// The exceptions of the log service.

#ifndef ZU_APP_LGSERVICEEX_H
#define ZU_APP_LGSERVICEEX_H

#include "../base/exBase.h"
#include "appApi.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of LgService.
class ZU_APP_API LgServiceEx : public ExBase
{
public:
    class ExAlreadyRunning;
    class ExForked;
    class ExLoggerNotStarted;

protected:
    /// `reason` is the whole text; null leaves it empty.
    LgServiceEx(const char* file, int line, const char* reason);
};

/// There is a service already: "A log service is running already."
class ZU_APP_API LgServiceEx::ExAlreadyRunning : public std::logic_error, public LgServiceEx
{
public:
    ExAlreadyRunning(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "A log service ran when this process was forked." Not raised any more: a child may make a
/// service of its own.
class ZU_APP_API LgServiceEx::ExForked : public std::logic_error, public LgServiceEx
{
public:
    ExForked(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// The packages have not been started: "The package 'logger' is not started."
class ZU_APP_API LgServiceEx::ExLoggerNotStarted : public std::logic_error, public LgServiceEx
{
public:
    ExLoggerNotStarted(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
