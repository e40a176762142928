/// @file
/// Asks running processes with a log service.

#ifndef ZU_ZULOG_ZLASKER_H
#define ZU_ZULOG_ZLASKER_H

#include "../app/lgControlFile.h"
#include "../app/lgControlLayout.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace Zu
{

/// A process with a log service, and the road to it: app/lgControlLayout.h describes that. Nothing
/// that stands in the file is trusted. Not thread-safe.
class ZlAsker
{
public:
    enum class State
    {
        /// It can be asked.
        Ready,
        /// Its process has ended, and left the file.
        Left,
        /// The file is not there any more.
        Gone,
        /// The file can't be used; getReason() says why.
        Refused
    };

    /// Opens a control file.
    explicit ZlAsker(const std::string& path);

    State getState() const
    {
        return _state;
    }

    /// Why it can't be asked, or has given no answer: part of a sentence.
    const std::string& getReason() const
    {
        return _reason;
    }

    /// @{
    /// Facts about a process that can be asked. Times are UTC in nanoseconds since 1970.
    std::uint32_t getProcess() const
    {
        return _header._process;
    }
    std::int64_t getProcessStart() const
    {
        return _header._processStart;
    }
    std::int64_t getServiceStart() const
    {
        return _header._serviceStart;
    }
    /// The file of the program, any bytes.
    std::string getProgram() const;
    /// @}

    /// Asks, and waits for the answer. False, with a reason, if none comes within the time.
    bool ask(const std::string& request, std::chrono::milliseconds patience, std::string& answer);

private:
    using Time = std::chrono::steady_clock::time_point;

    bool refuse(const char* reason);
    bool readHeader();
    bool claim(Time end);
    bool askClaimed(const std::string& request, Time end, std::string& answer);
    bool write(const std::string& request);
    bool read(std::string& answer);

    LgControlPeer _peer;
    LgControl::Header _header{};
    State _state = State::Refused;
    std::string _reason;
};

/// The control files in a directory, the oldest first. The directory ends with a separator.
std::vector<std::string> zlFindControlFiles(const std::string& directory);

} // namespace Zu

#endif
