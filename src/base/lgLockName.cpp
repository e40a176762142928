#include "base/lgLockName.h"

#include <string_view>

namespace Zu
{

namespace
{

bool isPlain(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("-_.").find(c) != std::string_view::npos;
}

} // namespace

std::string lgLockName(const char* name, std::uint32_t user)
{
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string text = "/ZU-lock-" + std::to_string(user) + "-";
    for (; *name != '\0'; ++name)
    {
        const auto byte = static_cast<unsigned char>(*name);
        if (isPlain(*name))
            text += *name;
        else
            text.append({'%', DIGITS[byte >> 4], DIGITS[byte & 15]});
    }
    return text;
}

} // namespace Zu
