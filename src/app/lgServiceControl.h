/// @file
/// Answers other processes that ask for a log service's figures and change its levels. Internal to
/// the application kit.

#ifndef ZU_APP_LGSERVICECONTROL_H
#define ZU_APP_LGSERVICECONTROL_H

#include "../base/lgMajorGroup.h"
#include "../base/lgTypes.h"
#include "lgControlFile.h"
#include "lgServiceHealth.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace Zu
{

/// What a service answers. The status is one JSON object in one line, for example (with line ends
/// added):
///
///     {"process":4711,"program":"/usr/bin/shop","directory":"/var/log/shop","threads":1,
///      "outputs":{"Internal Error":"/var/log/shop/events.log", ... ,"Profiling":"none"},
///      "groups":[{"name":"Database","levels":["Internal Error","Fatal Error","Error"]}],
///      "changed":[{"name":"Database","levels":["Internal Error","Fatal Error"]}],
///      "health":{ ... }}
///
/// "health" is what LgServiceHealth::toJson() returns, without the queues if they are too many;
/// "threads" counts them. "changed" has the groups whose levels were changed from outside, with
/// those that they get back.
///
/// Changes are events of the level Informational in the log, for example "LogLevels set by process
/// 4711: Database=Tracing".
///
/// Thread-safety: made and ended by any thread, used by the one that writes events.
class LgServiceControl
{
public:
    struct Settings
    {
        /// Where the file is made; ends with a separator.
        std::string _fileDirectory;
        /// That of the logs.
        std::string _logDirectory;
        /// How the service is doing, and where the lines of a level go.
        std::function<LgServiceHealth()> _health;
        std::function<std::string(LgTypes::Level)> _outputOf;
    };

    /// Makes the file, and removes those that ended processes have left. If the system refuses it,
    /// that is reported on standard error, and nobody can ask.
    explicit LgServiceControl(Settings settings);

    /// Answers if somebody asks; otherwise costs a load.
    void answerIfAsked()
    {
        if (isAsked()) answer();
    }

    /// The answer to a request. It takes effect.
    std::string answerTo(std::string_view request);

private:
    // What a group gets back, and the levels that it was given.
    struct Change
    {
        LgMajorGroup _before;
        std::uint32_t _set;
    };
    struct Threshold
    {
        std::string _group;
        LgTypes::Level _level;
    };

    bool isAsked();
    void answer();
    void write(std::uint64_t number, const std::string& text);
    std::string status() const;
    std::string set(std::string_view lines);
    std::string reset(std::string_view lines);
    void set(const Threshold& threshold);

    const Settings _settings;
    LgControlFile _file;
    // The number of the request that was answered last.
    std::uint64_t _answered = 0;
    // Of the groups that were changed.
    std::map<std::string, Change, std::less<>> _changes;
};

} // namespace Zu

#endif
