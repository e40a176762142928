#include "app/apOwnFile.h"

namespace Zu
{

std::string apRefusalOf(const std::vector<ApAccessEntry>& entries)
{
    using Kind = ApAccessEntry::Kind;
    for (const ApAccessEntry& entry : entries)
    {
        if (entry._isForOthers || entry._kind == Kind::Denies) continue;
        if (entry._kind == Kind::Unknown) return "it has an access rule of an unknown type";
        if (entry._isForChanges && !entry._isForTrusted)
            return "others can change it: " + entry._who + " may write";
    }
    return {};
}

} // namespace Zu
