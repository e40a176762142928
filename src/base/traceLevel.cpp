#include "base/traceLevel.h"

#include "base/duplicateString.h"

namespace Zu
{

TraceLevel::TraceLevel(const char* name) : _name(duplicateString(name)) {}

TraceLevel::~TraceLevel() = default;

} // namespace Zu
