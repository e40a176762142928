/// @file
/// Trace lines of the test framework. Internal to the library.

#ifndef ZU_BASE_TESTTRACE_H
#define ZU_BASE_TESTTRACE_H

#include "trace.h"
#include "traceStatement.h"

#include <string>

namespace Zu
{

/// The level "Main", under the name by which trace statements refer to it.
namespace TraceLevels
{
inline TraceLevel*& Main = Trace::MainTraceLevel;
}

/// Prints a text through the trace manager, whatever is traced.
inline void testPrint(const std::string& text)
{
    TraceManager::getInstance().print(text.c_str());
}

/// Reports an exception to tracing, and raises it.
template <class Exception>
[[noreturn]] void testThrow(const Exception& ex, const char* file, int line)
{
    TraceManager::getInstance().getTrace().printException(ex, file, line);
    throw ex;
}

} // namespace Zu

#endif
