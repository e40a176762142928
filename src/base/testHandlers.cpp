#include "base/testHandlers.h"

#include "base/exBadException.h"
#include "base/testInform.h"
#include "base/testTrace.h"

#include <cstdlib>
#include <exception>

namespace Zu::TestHandlers
{

void install()
{
// The language has given it up, but code compiled for an older one may come here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    std::set_unexpected(onUnexpected);
#pragma GCC diagnostic pop
    std::set_terminate(onTerminate);
}

void onTerminate()
{
    ZU_TRACE_SCOPE(Main, "terminateHandler()");
    TestInform::abnormalTermination("Terminate handler called.");
    std::abort();
}

void onUnexpected()
{
    ZU_TRACE_SCOPE(Main, "unexpectedHandler()");
    ZU_TRACE(Main, "Bad exception encountered.");
    testThrow(ExBadException(__FILE__, __LINE__), __FILE__, __LINE__);
}

} // namespace Zu::TestHandlers
