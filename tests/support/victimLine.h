/// @file
/// Reads back the numbered events that the victims of tests log.

#ifndef ZU_SUPPORT_VICTIMLINE_H
#define ZU_SUPPORT_VICTIMLINE_H

#include <cstdio>
#include <optional>
#include <string>

namespace support
{

/// The event "t<thread> n<number> end" of the group "Victim".
struct VictimEvent
{
    int _thread;
    int _number;
};

/// Nothing for any other line, and for a line that a kill has cut: its number may have fewer digits
/// than that of the event.
inline std::optional<VictimEvent> victimEventOf(const std::string& line)
{
    VictimEvent event{};
    const std::size_t place = line.find(": Victim t");
    if (place == std::string::npos || !line.ends_with(" end")) return std::nullopt;
    if (std::sscanf(line.c_str() + place, ": Victim t%d n%d", &event._thread, &event._number) != 2)
        return std::nullopt;
    return event;
}

} // namespace support

#endif
