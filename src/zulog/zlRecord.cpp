#include "zulog/zlRecord.h"

#include <cstddef>
#include <iterator>

namespace Zu
{

namespace
{

constexpr const char* KIND_NAMES[] = {
    "event",          "overflow",     "start",       "stop",
    "recovery-begin", "recovery-end", "not-written", "unreadable",
};
static_assert(std::size(KIND_NAMES) == static_cast<std::size_t>(ZlRecord::Kind::Unreadable) + 1);

} // namespace

const char* zlKindName(ZlRecord::Kind kind)
{
    return KIND_NAMES[static_cast<std::size_t>(kind)];
}

} // namespace Zu
