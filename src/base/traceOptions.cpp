#include "base/traceOptions.h"

#include "base/duplicateString.h"
#include "base/exDefine.h"
#include "base/exInternalError.h"
#include "base/inOptionParser.h"
#include "base/osUtils.h"
#include "base/streamFormat.h"
#include "base/textToInt.h"
#include "base/trace.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <ostream>

namespace Zu
{

namespace
{

constexpr const char* DEFAULT_OPTIONS = "show=Main,show=Exceptions";

enum Token
{
    Off,
    NoLine,
    ShowLevel,
    HideLevel,
    NoIndent,
    FnDirs,
    FnWidth,
    PrintLevels,
    Line,
    Indent,
    On,
    WriteProtect,
    Prefix,
    NoPrefix,
    Reset,
    Pid,
    NoPid,
    NumTokens
};

constexpr const char* TOKENS[] = {"off",    "noline",       "show",        "hide",     "noindent",
                                  "fndirs", "fnwidth",      "printlevels", "line",     "indent",
                                  "on",     "writeprotect", "prefix",      "noprefix", "reset",
                                  "pid",    "nopid",        nullptr};

static_assert(sizeof TOKENS / sizeof TOKENS[0] == NumTokens + 1);

} // namespace

TraceOptions& TraceOptions::getInstance()
{
    static TraceOptions* const theOptions = new TraceOptions;
    // Only once: a refused text is reported to the first caller that traces, and to no later one.
    static std::atomic<bool> isNew{true};
    if (isNew.exchange(false)) theOptions->apply(std::getenv("ZU_TRACE_OPTIONS"));
    return *theOptions;
}

TraceOptions::TraceOptions()
{
    std::snprintf(_pidText, sizeof _pidText, "%u", OsUtils::getPid());
    apply(DEFAULT_OPTIONS);
}

TraceOptions::~TraceOptions() = default;

void TraceOptions::apply(const char* text)
{
    if (!text || *text == '\0') return;
    const ArrayPtr<char> copy(duplicateString(text));
    char* rest = copy.get();
    while (*rest != '\0')
    {
        char* value = nullptr;
        const int token =
            InOptionParser::getSubOption(&rest, const_cast<char* const*>(TOKENS), &value);
        if (token < 0)
        {
            const ExText message("Unknown token \"%s\" in trace options.", value);
            throw ExInternalError(__FILE__, __LINE__, message.get());
        }
        apply(token, value);
    }
}

void TraceOptions::apply(int token, const char* value)
{
    if (token == PrintLevels) _printLevels = true;
    if (token == WriteProtect) _writeProtect = true;
    if (_writeProtect) return;
    switch (token)
    {
    case On:
        Trace::switchAll(true);
        break;
    case Off:
        Trace::switchAll(false);
        break;
    case Line:
        _line = true;
        break;
    case NoLine:
        _line = false;
        break;
    case Indent:
        _indent = true;
        break;
    case NoIndent:
        _indent = false;
        break;
    case Prefix:
        _prefix = true;
        break;
    case NoPrefix:
        _prefix = false;
        break;
    case Pid:
        _pid = true;
        break;
    case NoPid:
        _pid = false;
        break;
    case ShowLevel:
    case HideLevel:
        if (value) switchLevel(value, token == ShowLevel);
        break;
    case FnDirs:
    case FnWidth:
        if (value) applyNumber(token, value);
        break;
    case Reset:
        reset();
        break;
    default:
        break;
    }
}

void TraceOptions::applyNumber(int token, const char* value)
{
    const std::int32_t number = textToInt(value);
    if (token == FnDirs)
        _fnDirs = number < 0 ? 0 : number;
    else
        _fnWidth = number < 0 ? DEFAULT_WIDTH : number;
}

void TraceOptions::switchLevel(const char* name, bool on)
{
    if (std::strcmp(name, "all") != 0)
    {
        findLevel(name)._enabled.store(on, std::memory_order_relaxed);
        return;
    }
    _showAll = on ? Show : Hide;
    for (const auto& [known, level] : _levels) level->_enabled.store(on, std::memory_order_relaxed);
}

void TraceOptions::reset()
{
    Trace::switchAll(true);
    _prefix = true;
    _line = false;
    _pid = false;
    _indent = true;
    _fnDirs = 0;
    _fnWidth = DEFAULT_WIDTH;
    _printLevels = false;
    _showAll = AsNamed;
    for (const auto& [name, level] : _levels)
        level->_enabled.store(false, std::memory_order_relaxed);
    apply(DEFAULT_OPTIONS);
}

TraceLevel& TraceOptions::findLevel(const char* name)
{
    const auto found = _levels.find(name);
    if (found != _levels.end()) return *found->second;
    auto* const level = new TraceLevel(name);
    level->_enabled.store(_showAll == Show, std::memory_order_relaxed);
    _levels[level->getName()] = level;
    return *level;
}

TraceLevel& TraceOptions::registerLevel(const char* name, const char* file)
{
    TraceLevel& level = findLevel(name);
    if (file) level._files.push_back(file);
    return level;
}

const char* TraceOptions::tailOf(const char* file) const
{
    std::int64_t components = std::int64_t{_fnDirs} + 1;
    const char* tail = file + std::strlen(file);
    for (; tail != file; --tail)
        if (tail[-1] == '/' && --components == 0) break;
    return tail;
}

void TraceOptions::printLevels(std::ostream& os) const
{
    StreamFormat format(os);
    format.setPlain();
    os << "\nRegistered trace levels:\n\n";
    for (const auto& [name, level] : _levels)
    {
        os << (level->isOn() ? "X " : "  ") << std::left << std::setw(30) << name << " ";
        const char* lead = "";
        for (const char* const file : level->_files)
        {
            os << lead << tailOf(file);
            lead = "\n                                 ";
        }
        os << "\n";
    }
    os << "\n";
}

} // namespace Zu
