// A byte for which byte is changed, and the text of a cursor, which comes as it is and with the
// checksum that it should have: it is the one that is written back, or is refused.

#include "zulog/zlCursor.h"
#include "zulog/zlFile.h"

#include "fuzzTarget.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace
{

constexpr std::string_view PRESENT = "zulog cursor 2\n";
constexpr std::string_view EARLIER = "zulog cursor 1\n";

// The checksum is FNV-1a with 64 bits.
std::string sealed(const std::string& text)
{
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char character : text)
    {
        hash ^= static_cast<unsigned char>(character);
        hash *= 0x100000001b3U;
    }
    char line[32];
    std::snprintf(line, sizeof line, "sum %016llx\n", static_cast<unsigned long long>(hash));
    return text + static_cast<const char*>(line);
}

// Nothing if it is refused.
std::optional<Zu::ZlCursor> cursorIn(const std::string& text)
{
    const std::unique_ptr<char[]> copy = fuzz::exactCopy(text);
    try
    {
        return Zu::zlReadCursor(std::string_view(copy.get(), text.size()), "name");
    }
    catch (const Zu::ZlError& error)
    {
        FUZZ_REQUIRE(std::string_view(error.what()).substr(0, 7) == "\"name\" ");
        return std::nullopt;
    }
}

void checkPlaces(const Zu::ZlCursor& cursor, bool isEarlier)
{
    for (const auto& [name, place] : cursor._places)
    {
        FUZZ_REQUIRE(!name.empty());
        FUZZ_REQUIRE(place._headSize <= Zu::ZlPlace::LARGEST_HEAD);
        FUZZ_REQUIRE(!isEarlier || !place._last);
    }
}

// Returns whether it is a cursor.
bool check(const std::string& text, std::uint8_t choice)
{
    const std::optional<Zu::ZlCursor> cursor = cursorIn(text);
    if (!cursor) return false;
    const bool isEarlier = text.substr(0, EARLIER.size()) == EARLIER;
    FUZZ_REQUIRE(isEarlier || text.substr(0, PRESENT.size()) == PRESENT);
    checkPlaces(*cursor, isEarlier);
    const std::string written = Zu::zlWriteCursor(*cursor);
    FUZZ_REQUIRE(isEarlier || written == text);
    FUZZ_REQUIRE(cursorIn(written) == cursor);

    std::string changed = text;
    char& byte = changed[text.size() * choice / 256];
    byte = static_cast<char>(byte ^ 1);
    FUZZ_REQUIRE(!cursorIn(changed));
    return true;
}

void run(fuzz::Input input)
{
    const std::uint8_t choice = input.takeByte();
    const std::vector<std::uint8_t> bytes = input.takeRest();
    const std::string text(bytes.begin(), bytes.end());
    // Nothing may follow the checksum.
    if (check(text, choice)) FUZZ_REQUIRE(!check(sealed(text), choice));
    check(sealed(text), choice);
}

} // namespace

FUZZ_TARGET(cursor, run);
