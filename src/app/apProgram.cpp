#include "app/apProgram.h"

#include "app/apCommandLine.h"
#include "app/apLogCheck.h"
#include "app/apSettings.h"
#include "app/apSettingsFile.h"
#include "app/apUsage.h"
#include "base/exBase.h"
#include "base/inInitGuard.h"
#include "base/lgMajorGroup.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>

namespace Zu
{

namespace
{

constexpr int FAILED = 1;
constexpr int REFUSED = 2;

// The names of the options that all programs have, or may come to have.
constexpr std::array<const char*, 4> COMMON_NAMES = {"help", "version", "settings", "completion"};

using Texts = std::vector<std::string>;

// What the program declared, until the settings are known.
struct Range
{
    std::string _handle;
    int _least;
    int _most;
};

// Variables take values from the file until the packages have stopped.
class SourceGuard
{
public:
    explicit SourceGuard(InValueSource* source) : _isSet(source)
    {
        if (_isSet) _before = InVariableBase::setSource(source);
    }
    SourceGuard(const SourceGuard&) = delete;
    SourceGuard& operator=(const SourceGuard&) = delete;
    ~SourceGuard()
    {
        if (_isSet) InVariableBase::setSource(_before);
    }

private:
    bool _isSet;
    InValueSource* _before = nullptr;
};

std::string reasonOf(const std::exception_ptr& error)
{
    try
    {
        std::rethrow_exception(error);
    }
    catch (const std::exception& exception)
    {
        return exception.what();
    }
    catch (const ExBase& exception)
    {
        return exception.getReason();
    }
    catch (...)
    {
        return "an exception of an unknown type";
    }
}

Texts usedGroups()
{
    Texts names;
    LgMajorGroup::visitAll([&](const char* name, LgMajorGroup&) { names.emplace_back(name); });
    names.erase(std::remove_if(names.begin(), names.end(),
                               [](const std::string& name)
                               { return !LgMajorGroup::isUsed(name.c_str()); }),
                names.end());
    return names;
}

Texts logNotes()
{
    Texts notes;
    if (const char* const groups = std::getenv("ZU_LOG_GROUPS"))
        notes = apGroupsNotes(groups, usedGroups());
    if (const char* const level = std::getenv("ZU_LOG_DEFAULT_LEVEL"))
        if (const std::string note = apDefaultLevelNote(level); !note.empty())
            notes.push_back(note);
    return notes;
}

} // namespace

struct ApProgramState
{
    std::string _purpose;
    std::optional<DbgBuildText> _build;
    std::vector<std::pair<char, std::string>> _longNames;
    std::vector<Range> _ranges;
    Texts _required;
    std::string _wordsUsage;
    bool _takesWords = false;
    std::size_t _leastWords = 0;
    std::size_t _mostWords = 0;
    std::function<LgServiceOptions()> _logOptions;
    bool _hasLog = true;
    const ApFileFormat* _format = nullptr;
    std::string _settingsPath;

    std::string _program;
    ApSettings _settings;
    ApSettingsFile _file;
    Texts _words;
    const LgService* _log = nullptr;

    void nameOption(char letter, const std::string& name);
    void prepareSettings();
    ApSetting& settingOf(const std::string& handle);
    std::vector<ApOption> commonOptions() const;
    Texts errorsOf(const ApCommandLine& line, const std::vector<ApOption>& options) const;
    Texts loadFile(const ApCommandLine& line, const std::vector<ApOption>& options);
    std::optional<int> answer(const ApCommandLine& line,
                              const std::vector<ApOption>& options) const;
    void print(const std::string& text) const;
    int refuse(const Texts& errors) const;
    int start(const Texts& words, const std::function<int()>& body);
    int runStarted(const std::function<int()>& body);
};

ApProgram::ApProgram(std::string purpose) : _state(std::make_unique<ApProgramState>())
{
    _state->_purpose = std::move(purpose);
}

ApProgram::~ApProgram() = default;

ApProgram& ApProgram::build(const DbgBuildText& record)
{
    _state->_build = record;
    return *this;
}

ApProgram& ApProgram::longName(char letter, std::string name)
{
    _state->_longNames.emplace_back(letter, std::move(name));
    return *this;
}

ApProgram& ApProgram::range(std::string handle, int least, int most)
{
    _state->_ranges.push_back({std::move(handle), least, most});
    return *this;
}

ApProgram& ApProgram::require(std::string handle)
{
    _state->_required.push_back(std::move(handle));
    return *this;
}

ApProgram& ApProgram::arguments(std::string usage, std::size_t least, std::size_t most)
{
    _state->_wordsUsage = std::move(usage);
    _state->_takesWords = true;
    _state->_leastWords = least;
    _state->_mostWords = most;
    return *this;
}

ApProgram& ApProgram::logOptions(std::function<LgServiceOptions()> options)
{
    _state->_logOptions = std::move(options);
    return *this;
}

ApProgram& ApProgram::settings(const ApFileFormat& format, std::string path)
{
    _state->_format = &format;
    _state->_settingsPath = std::move(path);
    return *this;
}

ApProgram& ApProgram::withoutLog()
{
    _state->_hasLog = false;
    return *this;
}

const std::vector<std::string>& ApProgram::arguments() const
{
    return _state->_words;
}

const LgService& ApProgram::log() const
{
    if (!_state->_log) throw std::logic_error("the program has no log service now");
    return *_state->_log;
}

ApSetting& ApProgramState::settingOf(const std::string& handle)
{
    ApSetting* const setting = _settings.find(handle);
    if (!setting) throw std::logic_error("there is no variable with the handle '" + handle + "'");
    return *setting;
}

void ApProgramState::nameOption(char letter, const std::string& name)
{
    ApSetting* const setting = letter != 0 ? _settings.find(letter) : nullptr;
    if (!setting) throw std::logic_error(std::string("there is no option '-") + letter + "'");
    const std::vector<ApOption> options = _settings.options();
    const bool isTaken =
        std::find(COMMON_NAMES.begin(), COMMON_NAMES.end(), name) != COMMON_NAMES.end() ||
        std::any_of(options.begin(), options.end(),
                    [&](const ApOption& other)
                    { return other._longName == name && other._letter != letter; });
    if (isTaken) throw std::logic_error("the name '--" + name + "' is taken");
    setting->_longName = name;
}

void ApProgramState::prepareSettings()
{
    _settings = ApSettings::ofProcess();
    for (const auto& [letter, name] : _longNames) nameOption(letter, name);
    for (const Range& range : _ranges)
    {
        ApSetting& setting = settingOf(range._handle);
        setting._least = range._least;
        setting._most = range._most;
    }
    for (const std::string& handle : _required) settingOf(handle)._isRequired = true;
}

std::vector<ApOption> ApProgramState::commonOptions() const
{
    const auto isTaken = [&](char letter)
    {
        return std::any_of(_settings.get().begin(), _settings.get().end(),
                           [&](const ApSetting& known) { return known._letter == letter; });
    };
    std::vector<ApOption> options = {{isTaken('h') ? '\0' : 'h', false, "help"}};
    if (_build) options.push_back({0, false, "version"});
    if (_format) options.push_back({0, true, "settings"});
    options.push_back({0, false, "completion"});
    return options;
}

// The answer to a question, which is asked instead of running the program.
std::optional<int> ApProgramState::answer(const ApCommandLine& line,
                                          const std::vector<ApOption>& options) const
{
    const ApUsage usage{_program,   _purpose,        _wordsUsage,
                        &_settings, commonOptions(), _settingsPath};
    for (const ApGiven& given : line.given())
    {
        const std::string& name = options[given._option]._longName;
        std::string text;
        if (name == "help")
            text = usage.help();
        else if (name == "version")
            text = apVersion(*_build);
        else if (name == "completion")
            text = usage.completion();
        else
            continue;
        std::cout << text << std::flush;
        if (std::cout) return 0;
        print("standard output can't be written");
        return FAILED;
    }
    return std::nullopt;
}

Texts ApProgramState::errorsOf(const ApCommandLine& line,
                               const std::vector<ApOption>& options) const
{
    Texts errors = line.errors();
    if (!_takesWords && !line.words().empty())
        errors.push_back("unexpected argument '" + line.words()[0] +
                         "': the program takes options only");
    else if (line.words().size() < _leastWords)
        errors.push_back("too few arguments: expected " + _wordsUsage);
    else if (_takesWords && line.words().size() > _mostWords)
        errors.push_back("too many arguments: expected " + _wordsUsage);
    const Texts wrong = _settings.check(
        line, options, &std::getenv, [this](const std::string& name) { return _file.has(name); });
    errors.insert(errors.end(), wrong.begin(), wrong.end());
    if (const char* const groups = std::getenv("ZU_LOG_GROUPS"))
        if (const std::string error = apGroupsError(groups); !error.empty())
            errors.push_back(error);
    return errors;
}

// The last one that is named counts.
Texts ApProgramState::loadFile(const ApCommandLine& line, const std::vector<ApOption>& options)
{
    if (!_format) return {};
    std::string path = _settingsPath;
    for (const ApGiven& given : line.given())
    {
        if (options[given._option]._longName != "settings") continue;
        path = given._value;
        if (path.empty()) return {"option '--settings' needs the path of a file"};
    }
    return path.empty() ? Texts() : _file.load(path, *_format, _settings);
}

void ApProgramState::print(const std::string& text) const
{
    // In one piece, so that other threads and processes do not come between.
    std::cerr << (_program + ": " + text + "\n") << std::flush;
}

int ApProgramState::refuse(const Texts& errors) const
{
    for (const std::string& error : errors) print(error);
    print("'" + _program + " --help' shows what can be given");
    return REFUSED;
}

int ApProgramState::runStarted(const std::function<int()>& body)
{
    for (const std::string& note : logNotes()) print(note);
    if (!_hasLog) return body();
    const LgService service(_logOptions ? _logOptions() : LgServiceOptions::fromEnvironment());
    _log = &service;
    struct End
    {
        const LgService*& _log;
        ~End()
        {
            _log = nullptr;
        }
    } const end{_log};
    return body();
}

// Starts with the words in the form that the packages read.
int ApProgramState::start(const Texts& words, const std::function<int()>& body)
{
    std::vector<const char*> pointers;
    for (const std::string& word : words) pointers.push_back(word.c_str());
    pointers.push_back(nullptr);
    int count = static_cast<int>(words.size());
    const char* const* list = pointers.data();
    const SourceGuard source(_format ? &_file : nullptr);
    try
    {
        const InInitGuard guard(count, list);
        return runStarted(body);
    }
    catch (...)
    {
        print(reasonOf(std::current_exception()));
        return FAILED;
    }
}

int ApProgram::runBody(int argc, const char* const* argv, const std::function<int()>& body)
{
    ApProgramState& state = *_state;
    const Texts words(argc > 0 ? argv + 1 : argv, argv + std::max(argc, 0));
    const std::string path = argc > 0 ? argv[0] : "";
    state._program = apProgramName(path);
    state.prepareSettings();
    std::vector<ApOption> options = state._settings.options();
    // Without options the packages take all words as they are.
    const bool hasOptions = !options.empty();
    for (const ApOption& option : state.commonOptions()) options.push_back(option);
    const ApCommandLine line(options, words);
    if (const std::optional<int> answered = state.answer(line, options)) return *answered;
    Texts errors = state.loadFile(line, options);
    const Texts others = state.errorsOf(line, options);
    errors.insert(errors.end(), others.begin(), others.end());
    if (!errors.empty()) return state.refuse(errors);
    state._words = line.words();
    Texts translated = hasOptions ? line.inLetters() : line.words();
    translated.insert(translated.begin(), path);
    return state.start(translated, body);
}

} // namespace Zu
