#include "base/lgSetup.h"

#include <string_view>

namespace Zu
{

namespace
{

struct LevelVariable
{
    const char* _name;
    LgTypes::Level _level;
};

// The variables, in the order in which they are read.
constexpr LevelVariable LEVEL_VARIABLES[] = {
    {"ZU_LOG_INTERNAL_ERROR", LgTypes::InternalError},
    {"ZU_LOG_FATAL_ERROR", LgTypes::FatalError},
    {"ZU_LOG_RECOVERABLE_ERROR", LgTypes::Error},
    {"ZU_LOG_WARNING", LgTypes::Warning},
    {"ZU_LOG_INFORMATIONAL", LgTypes::Informational},
    {"ZU_LOG_PROFILING", LgTypes::Profiling},
    {"ZU_LOG_TRACING", LgTypes::Tracing},
};

// The settings of a level without a variable.
void setDefaults(LgLevelSetup& setup, LgTypes::Level level, const LgLogFiles& files)
{
    if (level == LgTypes::Tracing)
    {
        setup._enabled = true;
        setup._echo = true;
        setup._isFileMissing = false;
        return;
    }
    const std::string& file = level == LgTypes::Profiling ? files._profiles : files._events;
    const bool isUsable = !file.empty();
    const bool keepsFlags = level == LgTypes::InternalError || level == LgTypes::Profiling;
    if (!keepsFlags) setup = LgLevelSetup();
    setup._enabled = isUsable || !keepsFlags;
    setup._file.reset();
    if (isUsable) setup._file = file;
    setup._isFileMissing = !isUsable;
}

} // namespace

LgLevelSetup LgSetup::parse(const char* value)
{
    const std::string_view text = value;
    LgLevelSetup setup;
    if (text.starts_with("--")) return setup;
    setup._enabled = true;
    setup._echo = text.starts_with('%');
    const bool isMarked = setup._echo || text.starts_with('+');
    const bool hasTwoMarks = isMarked && text.substr(1).starts_with('+');
    setup._append = text.starts_with('+') || hasTwoMarks;
    // A single mark alone names no file; after two marks even an empty name counts.
    if (!isMarked || text.size() > 1) setup._file = text.substr(isMarked + hasTwoMarks);
    return setup;
}

void LgSetup::read(const Environment& environment, const LgLogFiles& files)
{
    for (const auto& [name, level] : LEVEL_VARIABLES)
    {
        if (const char* const value = environment(name))
            _levels[level] = parse(value);
        else
            setDefaults(_levels[level], level, files);
    }
}

} // namespace Zu
