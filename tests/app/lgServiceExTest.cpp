#include "app/lgServiceEx.h"

#include "support/exceptionChecks.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace
{

using support::exceptionRow;
using Zu::LgServiceEx;

TEST(LgServiceEx, SaysWhatIsWrong)
{
    const support::ExceptionRow rows[] = {
        exceptionRow<LgServiceEx::ExAlreadyRunning, std::logic_error, LgServiceEx>(
            "ExAlreadyRunning", "A log service is running already."),
        exceptionRow<LgServiceEx::ExForked, std::logic_error, LgServiceEx>(
            "ExForked", "A log service ran when this process was forked."),
        exceptionRow<LgServiceEx::ExLoggerNotStarted, std::logic_error, LgServiceEx>(
            "ExLoggerNotStarted", "The package 'logger' is not started."),
    };
    for (const support::ExceptionRow& row : rows)
    {
        support::expectTexts(row);
        support::expectHandlers(row);
        support::expectClone(row);
    }
}

} // namespace
