#include "base/trace.h"

#include "base/initOrder.h"
#include "base/plainNumber.h"
#include "base/plainNumerals.h"
#include "base/plainTextStream.h"
#include "base/streamFormat.h"
#include "base/traceManager.h"
#include "base/traceOptions.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iomanip>

namespace Zu
{

std::atomic<bool> Trace::_on{true};

TraceLevel* Trace::MainTraceLevel = nullptr;

namespace
{

struct MainLevel
{
    // Nothing can catch an exception from a static object. If the library is a module that is being
    // loaded, the platform's loader would get it, so the process ends here.
    MainLevel() noexcept
    {
        try
        {
            Trace::MainTraceLevel = Trace::registerLevel("Main", __FILE__);
        }
        catch (const ExBase& exception)
        {
            std::fprintf(stderr, "%s\n", exception.getReason());
            std::fflush(stderr);
            std::abort();
        }
    }
};

const MainLevel theMainLevel ZU_INIT_ORDER(ZU_INIT_ORDER_TRACE);

} // namespace

Trace::~Trace() = default;

TraceLevel* Trace::registerLevel(const char* name, const char* file)
{
    return &TraceOptions::getInstance().registerLevel(name, file);
}

void Trace::setOptions(const char* options)
{
    TraceOptions::getInstance().apply(options);
}

void Trace::printLevels(std::ostream& os)
{
    TraceOptions::getInstance().printLevels(os);
}

void Trace::switchAll(bool on)
{
    _on.store(on, std::memory_order_relaxed);
}

void Trace::printPrefix(std::ostream&) {}

void Trace::prefix(std::ostream& os, const char* file, int line)
{
    const TraceOptions& options = TraceOptions::getInstance();
    StreamFormat format(os);
    format.setPlain();
    static std::atomic<bool> isFirst{true};
    if (isFirst.exchange(false) && options.isPrinting()) options.printLevels(os);
    if (options._pid) os << std::left << std::setw(10) << options._pidText;
    if (options._prefix) printPrefix(os);
    // The hook may have changed the format.
    format.setPlain();
    if (options._line)
    {
        const std::string tail = options.tailOf(file);
        const auto width = static_cast<std::size_t>(options._fnWidth);
        os << std::left << std::setw(options._fnWidth) << tail.substr(0, width) << " ("
           << std::right << std::setw(4) << plainNumber(line) << ") ";
    }
    if (!options._indent || _indentation < 1) return;
    os << ' ';
    for (std::int32_t i = 1; i < _indentation; ++i) os << (i % 2 == 1 ? ' ' : '|');
}

void Trace::log(std::ostream& os, const char* file, int line)
{
    StreamFormat format(os);
    format.setPlain();
    prefix(os, file, line);
    if (TraceOptions::getInstance()._indent) os << "| ";
}

void Trace::entering(std::ostream& os, const char* file, int line, const char* name)
{
    prefix(os, file, line);
    if (TraceOptions::getInstance()._indent)
    {
        os << "+ " << name;
        indent();
    }
    else
    {
        os << ">>> " << name;
    }
}

void Trace::exiting(std::ostream& os, const char* file, int line, const char* name)
{
    prefix(os, file, line);
    if (TraceOptions::getInstance()._indent)
    {
        os << "/";
        unindent();
    }
    else
    {
        os << "<<< " << name;
    }
}

void Trace::indent()
{
    _indentation += 2;
}

void Trace::unindent()
{
    _indentation -= 2;
}

void Trace::print(std::ostream& os, const char* file, int line, const char* format, ...)
{
    char text[1024];
    std::va_list arguments;
    {
        // Not around the hook below, which is the client's.
        const PlainNumerals plain;
        va_start(arguments, format);
        std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
    }
    StreamFormat streamFormat(os);
    streamFormat.setPlain();
    log(os, file, line);
    os << static_cast<const char*>(text);
}

void Trace::printException(const ExBase& ex, const char* file, int line)
{
    static const TraceLevel* const level = registerLevel("Exceptions", __FILE__);
    if (!isEnabled(*level)) return;
    PlainTextStream os;
    log(os, file, line);
    os << "Throwing exception " << ex.getDetailedReason();
    TraceManager::getInstance().print(os.str().c_str());
}

Trace::Entry::Entry(Trace& trace, const TraceLevel& level, const char* name, const char* file,
                    int line)
    : _trace(trace), _file(file), _line(line), _name(name), _written(isEnabled(level))
{
    if (!_written) return;
    PlainTextStream os;
    _trace.entering(os, _file, _line, _name);
    TraceManager::getInstance().print(os.str().c_str());
}

Trace::Entry::~Entry()
{
    if (!_written) return;
    PlainTextStream os;
    _trace.exiting(os, _file, _line, _name);
    TraceManager::getInstance().print(os.str().c_str());
}

} // namespace Zu
