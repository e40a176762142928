// Lines: a file name, as in a trace statement, and option texts.

#include "base/exInternalError.h"
#include "base/trace.h"
#include "base/traceOptions.h"

#include "fuzzTarget.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Zu::Trace;
using Zu::TraceOptions;

struct SubOption
{
    std::string _name;
    std::optional<std::string> _value;
};

std::vector<SubOption> subOptionsOf(const std::string& text)
{
    std::vector<SubOption> subOptions;
    std::vector<std::string> pieces = fuzz::split(text, ',');
    // A trailing comma is not followed by a piece.
    if (pieces.back().empty()) pieces.pop_back();
    for (const std::string& piece : pieces)
    {
        SubOption subOption{piece.substr(0, piece.find('=')), std::nullopt};
        if (subOption._name.size() < piece.size())
            subOption._value = piece.substr(subOption._name.size() + 1);
        subOptions.push_back(subOption);
    }
    return subOptions;
}

std::int32_t numberOf(const std::string& text)
{
    using Limits = std::numeric_limits<std::int32_t>;
    std::size_t place = text.find_first_not_of(" \t\n\v\f\r");
    if (place == std::string::npos) return 0;
    const bool isNegative = text[place] == '-';
    if (isNegative || text[place] == '+') ++place;
    std::int64_t number = 0;
    for (; place < text.size() && text[place] >= '0' && text[place] <= '9'; ++place)
        number = std::min<std::int64_t>(number * 10 + (text[place] - '0'), 1LL << 40);
    number = isNegative ? -number : number;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
}

// The options, and the existing levels of the process.
struct Model
{
    bool _on = true;
    bool _prefix = true;
    bool _line = false;
    bool _pid = false;
    bool _indent = true;
    bool _printLevels = false;
    std::int32_t _width = 20;
    std::int32_t _dirs = 0;
    bool _newLevelsAreOn = false;
    std::map<std::string, bool>& _levels;

    explicit Model(std::map<std::string, bool>& levels) : _levels(levels)
    {
        reset();
    }

    void switchAll(bool on)
    {
        for (auto& [name, isOn] : _levels) isOn = on;
    }

    void reset()
    {
        switchAll(false);
        _levels["Main"] = _levels["Exceptions"] = true;
        _on = _prefix = _indent = true;
        _line = _pid = _printLevels = _newLevelsAreOn = false;
        _width = 20;
        _dirs = 0;
    }

    bool apply(const SubOption& option)
    {
        const struct
        {
            const char* _name;
            bool& _flag;
            bool _value;
        } switches[] = {{"on", _on, true},
                        {"off", _on, false},
                        {"line", _line, true},
                        {"noline", _line, false},
                        {"indent", _indent, true},
                        {"noindent", _indent, false},
                        {"prefix", _prefix, true},
                        {"noprefix", _prefix, false},
                        {"pid", _pid, true},
                        {"nopid", _pid, false},
                        {"printlevels", _printLevels, true}};
        for (const auto& entry : switches)
        {
            if (option._name != entry._name) continue;
            entry._flag = entry._value;
            return true;
        }
        if (option._name == "reset")
        {
            reset();
            return true;
        }
        const bool isShow = option._name == "show";
        if (isShow || option._name == "hide")
        {
            if (option._value) show(*option._value, isShow);
            return true;
        }
        if (option._name != "fndirs" && option._name != "fnwidth") return false;
        if (!option._value) return true;
        const std::int32_t number = numberOf(*option._value);
        if (option._name == "fndirs")
            _dirs = std::max(number, 0);
        else
            _width = number < 0 ? 20 : number;
        return true;
    }

    void show(const std::string& level, bool on)
    {
        if (level == "all")
        {
            _newLevelsAreOn = on;
            switchAll(on);
        }
        else
        {
            _levels[level] = on;
        }
    }
};

std::map<std::string, bool>& levelsOfProcess()
{
    static std::map<std::string, bool> theLevels{{"TestPerformer", false}};
    return theLevels;
}

// Levels are never deleted, so a long run may only make few names: one character repeated.
// "writeprotect" would be the last option of the process.
bool isAllowed(const std::vector<SubOption>& options)
{
    return std::all_of(options.begin(), options.end(),
                       [](const SubOption& option)
                       {
                           if (option._name == "writeprotect") return false;
                           if (option._name != "show" && option._name != "hide") return true;
                           const std::string name = option._value.value_or("");
                           if (name == "Main" || name == "Exceptions" || name == "all") return true;
                           return name.size() <= 2 &&
                                  name.find_first_not_of(name.front()) == std::string::npos;
                       });
}

// A reason holds 1,023 characters.
std::string reasonFor(const std::string& token)
{
    return ("Unknown token \"" + token + "\" in trace options.").substr(0, 1023);
}

// The refused token.
std::optional<std::string> applyToModel(const std::vector<SubOption>& options, Model& model)
{
    for (const SubOption& option : options)
        if (!model.apply(option)) return option._name;
    return std::nullopt;
}

void applyToBoth(const std::string& text, Model& model)
{
    const std::vector<SubOption> options = subOptionsOf(text);
    if (!isAllowed(options)) return;
    const std::optional<std::string> refused = applyToModel(options, model);
    try
    {
        Trace::setOptions(fuzz::exactCopy(text).get());
        FUZZ_REQUIRE(!refused);
    }
    catch (const Zu::ExInternalError& exception)
    {
        FUZZ_REQUIRE(refused);
        FUZZ_REQUIRE(exception.getReason() == reasonFor(*refused));
    }
}

std::string tailOf(const std::string& file, std::int32_t dirs)
{
    const std::vector<std::string> parts = fuzz::split(file, '/');
    const std::size_t count = std::min(static_cast<std::size_t>(dirs) + 1, parts.size());
    std::string tail;
    for (std::size_t i = parts.size() - count; i < parts.size(); ++i)
        tail += parts[i] + (i + 1 < parts.size() ? "/" : "");
    return tail;
}

std::string prefixOf(const Model& model, const std::string& pid, const std::string& file, int line)
{
    std::ostringstream text;
    if (model._pid) text << std::left << std::setw(10) << pid;
    if (model._line)
    {
        const std::string tail = tailOf(file, model._dirs);
        text << std::left << std::setw(model._width)
             << tail.substr(0, static_cast<std::size_t>(model._width)) << " (" << std::right
             << std::setw(4) << line << ") ";
    }
    return text.str();
}

std::string listOf(const Model& model)
{
    std::ostringstream text;
    text << "\nRegistered trace levels:\n\n";
    for (const auto& [name, isOn] : model._levels)
        text << (isOn ? "X " : "  ") << std::left << std::setw(30) << name << " \n";
    text << "\n";
    return text.str();
}

// The list without the file names of the library's own levels.
std::string withoutFiles(const std::string& list)
{
    const std::string margin(33, ' ');
    std::string text;
    for (const std::string& line : fuzz::split(list, '\n'))
    {
        const bool isMoreFiles = line.size() > margin.size() && line.find(margin) == 0;
        if (isMoreFiles) continue;
        const std::string name = line.substr(std::min<std::size_t>(line.size(), 2));
        const bool isOwn = name.find("Main ") == 0 || name.find("Exceptions ") == 0 ||
                           name.find("TestPerformer ") == 0;
        text += (isOwn ? line.substr(0, margin.size()) : line) + "\n";
    }
    text.pop_back();
    return text;
}

void run(fuzz::Input input)
{
    static TraceOptions& options = TraceOptions::getInstance();
    options.apply("reset");
    Model model(levelsOfProcess());
    const std::string file = input.takeLine();
    for (const std::string& text : input.takeLines()) applyToBoth(text, model);

    FUZZ_REQUIRE(options._prefix == model._prefix);
    FUZZ_REQUIRE(options._line == model._line);
    FUZZ_REQUIRE(options._pid == model._pid);
    FUZZ_REQUIRE(options._indent == model._indent);
    FUZZ_REQUIRE(options._fnWidth == model._width);
    FUZZ_REQUIRE(options.isPrinting() == model._printLevels);
    const auto fileCopy = fuzz::exactCopy(file);
    FUZZ_REQUIRE(options.tailOf(fileCopy.get()) == tailOf(file, model._dirs));
    FUZZ_REQUIRE(Trace::isEnabled(*Trace::MainTraceLevel) ==
                 (model._on && model._levels.at("Main")));
    for (const auto& [name, isOn] : model._levels)
        FUZZ_REQUIRE(Trace::registerLevel(name.c_str(), nullptr)->isOn() == isOn);
    // A new level gets the state that "all" set last.
    static int newLevels = 0;
    if (newLevels < 20 && model._newLevelsAreOn)
    {
        const std::string name = "new " + std::to_string(newLevels++);
        FUZZ_REQUIRE(Trace::registerLevel(name.c_str(), nullptr)->isOn());
        model._levels[name] = true;
    }

    std::ostringstream list;
    options.printLevels(list);
    FUZZ_REQUIRE(withoutFiles(list.str()) == listOf(model));
    // The first line of the process may be preceded by the list.
    static const bool isBegun = []
    {
        std::ostringstream firstLine;
        Trace().prefix(firstLine, "", 1);
        return true;
    }();
    // A field of any width is written, however long that takes.
    if (!isBegun || model._width > 1000) return;
    std::ostringstream prefix;
    Trace().prefix(prefix, fileCopy.get(), 7);
    FUZZ_REQUIRE(prefix.str() == prefixOf(model, options._pidText, file, 7));
}

} // namespace

FUZZ_TARGET(traceOptions, run);
