/// @file
/// What tracing shows, and how. Internal to the library.

#ifndef ZU_BASE_TRACEOPTIONS_H
#define ZU_BASE_TRACEOPTIONS_H

#include "textTokens.h"
#include "traceLevel.h"

#include <cstdint>
#include <iosfwd>
#include <map>

namespace Zu
{

/// The options of the process and its levels. The one store is made at first use, even before
/// main(), and never deleted.
class TraceOptions
{
public:
    /// Made with the defaults; then ZU_TRACE_OPTIONS is applied, which raises as apply() does.
    static TraceOptions& getInstance();

    TraceOptions(const TraceOptions&) = delete;
    TraceOptions& operator=(const TraceOptions&) = delete;

    /// Applies the options of a text, "show=Main,noindent". A null or empty text does nothing.
    /// Raises ExInternalError "Unknown token "..." in trace options."; the options before it remain
    /// in effect.
    void apply(const char* text);

    /// The level of this name, made if there is none. A file is recorded unless it is null.
    TraceLevel& registerLevel(const char* name, const char* file);

    /// Writes the levels with their sources.
    void printLevels(std::ostream& os) const;

    /// The file's last components, as many as the options require; only "/" separates.
    const char* tailOf(const char* file) const;

    bool isPrinting() const
    {
        return _printLevels;
    }

    bool _prefix = true;
    bool _line = false;
    bool _pid = false;
    bool _indent = true;
    std::int32_t _fnWidth = DEFAULT_WIDTH;
    char _pidText[10];

private:
    static constexpr std::int32_t DEFAULT_WIDTH = 20;

    enum ShowAll : std::int32_t
    {
        AsNamed,
        Show,
        Hide
    };

    TraceOptions();
    ~TraceOptions();

    void apply(int token, const char* value);
    void applyNumber(int token, const char* value);
    void switchLevel(const char* name, bool on);
    void reset();
    TraceLevel& findLevel(const char* name);

    std::int32_t _fnDirs = 0;
    bool _printLevels = false;
    bool _writeProtect = false;
    ShowAll _showAll = AsNamed;
    // Keyed by the levels' own copies of their names.
    std::map<const char*, TraceLevel*, LessByBytes> _levels;
};

} // namespace Zu

#endif
