#include "app/lgContext.h"

#include "app/lgServicePlatform.h"
#include "app/lgSuffix.h"

namespace Zu
{

void LgContext::nameThread(std::string_view name)
{
    LgSuffix::nameThread(name);
    const std::string kept = LgSuffix::beginningOf(name, LgServicePlatform::LONGEST_THREAD_NAME);
    if (!kept.empty()) LgServicePlatform::nameThread(kept);
}

std::size_t LgContext::push(std::string_view name, std::string_view value)
{
    return LgSuffix::push(name, value);
}

void LgContext::pop(std::size_t before) noexcept
{
    LgSuffix::pop(before);
}

} // namespace Zu
