#include "zulog/zlFile.h"
#include "zulog/zlJournal.h"

namespace Zu
{

std::unique_ptr<ZlTransport> zlMakeJournal(const std::string&)
{
    throw ZlError("Windows has no journal of this kind; tcp:// can be used");
}

} // namespace Zu
