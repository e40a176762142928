#include "base/testHandlers.h"

#include "base/compiler.h"
#include "base/exBadException.h"
#include "base/testInform.h"
#include "base/testTrace.h"

#include <cstdlib>
#include <exception>

namespace
{

// For standard libraries that no longer have a handler to set. It stands in the global namespace,
// where a using-directive puts the names of std as well: further in, it would hide them.
namespace MissingHandlers
{
struct Handler
{
    template <class Function> Handler(Function*) {}
};

[[maybe_unused]] void set_unexpected(Handler) {}
} // namespace MissingHandlers

} // namespace

namespace Zu::TestHandlers
{

namespace
{

// The language has dropped it, but code compiled for an older standard may get here.
ZU_IGNORE_DEPRECATED
void setUnexpected()
{
    using namespace std;
    using namespace MissingHandlers;
    set_unexpected(onUnexpected);
}
ZU_END_IGNORE

} // namespace

void install()
{
    setUnexpected();
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
