#include "zulog/zlFile.h"
#include "zulog/zlRelp.h"

namespace Zu
{

std::unique_ptr<ZlTransport> zlMakeRelp(const std::string&, const std::string&)
{
    throw ZlError("RELP can't be used on Windows, where its library is missing; tcp:// can");
}

} // namespace Zu
