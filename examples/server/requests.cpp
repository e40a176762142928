#include "requests.h"

#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

ZU_LOG_GROUP(Requests, "Server", serverPackage);

namespace server
{

namespace
{

// Takes a blank and a whole number from the beginning of a text.
bool takeNumber(std::string_view& text, std::int32_t& number)
{
    if (text.empty() || text.front() != ' ') return false;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data() + 1, end, number);
    text = std::string_view(rest, static_cast<std::size_t>(end - rest));
    return error == std::errc();
}

Answer sumOf(std::string_view operands)
{
    std::int32_t a = 0;
    std::int32_t b = 0;
    if (!takeNumber(operands, a) || !takeNumber(operands, b) || !operands.empty())
        return {"? ADD takes two whole numbers of 32 bits"};
    return {"= " + std::to_string(std::int64_t{a} + b)};
}

Answer find(std::string_view request, const Zu::LgService& service)
{
    if (request.starts_with("ADD ")) return sumOf(request.substr(3));
    if (request.starts_with("ECHO ")) return {std::string(request.substr(5))};
    if (request == "STATS") return {service.health().toJson()};
    if (request == "QUIT") return {"= bye", true};
    if (request == "SHUTDOWN") return {"= the server ends", true, true};
    return {"? expected ADD a b, ECHO text, STATS, QUIT or SHUTDOWN"};
}

} // namespace

Answer answerTo(const std::string& request, const Zu::LgService& service)
{
    // An event ends at a NUL, so what follows would be answered and not logged.
    const bool isText = request.find('\0') == std::string::npos;
    Answer answer = isText ? find(request, service) : Answer{"? a request has no NUL characters"};
    // The service escapes what could forge a line, so anybody's text can be logged as it is.
    if (answer._text.starts_with('?'))
        ZU_LOG_WARNING(Requests, "refused: " << request);
    else
        ZU_LOG_INFORMATIONAL(Requests, request);
    return answer;
}

} // namespace server
