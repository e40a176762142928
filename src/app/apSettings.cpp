#include "app/apSettings.h"

#include "base/inContextAlias.h"
#include "base/inVariable.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace Zu
{

namespace
{

using Kind = ApSetting::Kind;

// A bare option, or one of a variable.
ApSetting ofOption(const InContextAliasBase& alias)
{
    ApSetting setting;
    setting._letter = alias.getKey()[0];
    setting._takesValue = setting._letter != 0 && alias.getKey()[1] == ':';
    setting._description = alias.getDescription();
    return setting;
}

Kind kindOf(const InVariableBase& variable)
{
    if (dynamic_cast<const InVariable<int>*>(&variable)) return Kind::Integer;
    if (dynamic_cast<const InVariable<bool>*>(&variable)) return Kind::Switch;
    return Kind::Text;
}

// The aliases come in the order of their priority.
void takeAlias(ApSetting& setting, const InContextAliasBase& alias)
{
    if (dynamic_cast<const InArgAlias*>(&alias))
    {
        const ApSetting option = ofOption(alias);
        if (setting._letter != 0)
        {
            setting._moreLetters += option._letter;
            return;
        }
        setting._letter = option._letter;
        setting._takesValue = option._takesValue;
        setting._description = option._description;
    }
    else if (dynamic_cast<const InEnvAlias*>(&alias))
    {
        if (!setting._variable.empty())
        {
            setting._moreVariables.emplace_back(alias.getKey());
            return;
        }
        setting._variable = alias.getKey();
        if (setting._description.empty()) setting._description = alias.getDescription();
    }
    else if (dynamic_cast<const InDefAlias*>(&alias) && !setting._default)
    {
        setting._default = alias.getKey();
        setting._defaultText = alias.getDescription();
    }
}

ApSetting ofVariable(const InVariableBase& variable)
{
    ApSetting setting;
    setting._handle = variable.getHandle();
    setting._kind = kindOf(variable);
    variable.visitAliases([&](const InContextAliasBase& alias) { takeAlias(setting, alias); });
    return setting;
}

bool isSwitch(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return text == "0" || text == "1" || text == "false" || text == "true";
}

bool isWithin(const ApSetting& setting, const std::string& text)
{
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end && number >= setting._least &&
           number <= setting._most;
}

// How a missing value may be given.
std::string placesOf(const ApSetting& setting)
{
    std::string places;
    std::string letters = setting._moreLetters;
    if (setting._letter != 0) letters.insert(0, 1, setting._letter);
    if (!letters.empty()) places = std::string("option '-") + letters.front() + "'";
    if (!setting._longName.empty())
        places += (places.empty() ? "option '--" : " or '--") + setting._longName + "'";
    if (!setting._variable.empty())
        places += (places.empty() ? "" : " or ") + ("the variable " + setting._variable);
    return places;
}

bool isOptionOf(const ApSetting& setting, char letter)
{
    return letter != 0 &&
           (setting._letter == letter || setting._moreLetters.find(letter) != std::string::npos);
}

// An option without a value has the empty text, which a switch takes for "on".
std::string errorOfOption(const ApSetting& setting, const ApOption& option, const ApGiven& given)
{
    if (!option._takesValue) return {};
    return setting.errorOf("option '" + given._spelling + "'", given._value);
}

std::string errorWithoutOption(const ApSetting& setting, const ApSettings::Environment& environment,
                               const ApSettings::InFile& inFile)
{
    std::vector<std::string> variables = setting._moreVariables;
    if (!setting._variable.empty()) variables.insert(variables.begin(), setting._variable);
    for (const std::string& variable : variables)
        if (const char* const text = environment(variable.c_str()))
            return setting.errorOf("the variable " + variable, text);
    if (!setting._isRequired || setting._default || inFile(setting._handle)) return {};
    return placesOf(setting) + " is needed: " + setting._description;
}

} // namespace

std::string ApSetting::expected() const
{
    if (_kind == Kind::Text) return "a text";
    if (_kind == Kind::Switch) return "0, 1, false or true";
    if (_least == INT_MIN && _most == INT_MAX) return "a whole number";
    if (_most == INT_MAX) return "a whole number of at least " + std::to_string(_least);
    if (_least == INT_MIN) return "a whole number of at most " + std::to_string(_most);
    return "a whole number from " + std::to_string(_least) + " to " + std::to_string(_most);
}

std::string ApSetting::errorOf(const std::string& place, const std::string& text) const
{
    const bool isGood =
        _kind == Kind::Text || (_kind == Kind::Switch ? isSwitch(text) : isWithin(*this, text));
    return isGood ? "" : place + " needs " + expected() + ", not '" + text + "'";
}

ApSettings ApSettings::ofProcess()
{
    std::map<char, ApSetting> withLetter;
    std::vector<ApSetting> others;
    InContextAliasMgr<InArgAlias>::visitAll(
        [&](const InContextAliasBase& alias)
        {
            const ApSetting setting = ofOption(alias);
            if (setting._letter != 0) withLetter.emplace(setting._letter, setting);
        });
    InVariableBase::visitAll(
        [&](const InVariableBase& variable)
        {
            ApSetting setting = ofVariable(variable);
            // An option belongs to the first of its variables.
            if (setting._letter != 0 && withLetter[setting._letter]._handle.empty())
            {
                withLetter[setting._letter] = setting;
                return;
            }
            if (setting._letter != 0) setting._moreLetters.insert(0, 1, setting._letter);
            setting._letter = 0;
            others.push_back(setting);
        });
    std::vector<ApSetting> all;
    all.reserve(withLetter.size() + others.size());
    for (const auto& [letter, setting] : withLetter) all.push_back(setting);
    all.insert(all.end(), others.begin(), others.end());
    return ApSettings(std::move(all));
}

ApSetting* ApSettings::find(char letter)
{
    for (ApSetting& setting : _settings)
        if (setting._letter == letter) return &setting;
    return nullptr;
}

ApSetting* ApSettings::find(const std::string& handle)
{
    if (handle.empty()) return nullptr;
    for (ApSetting& setting : _settings)
        if (setting._handle == handle) return &setting;
    return nullptr;
}

const ApSetting* ApSettings::find(const std::string& handle) const
{
    return const_cast<ApSettings*>(this)->find(handle);
}

std::vector<ApOption> ApSettings::options() const
{
    std::vector<ApOption> options;
    for (const ApSetting& setting : _settings)
    {
        const auto isSame = [&](const ApOption& known) { return known._letter == setting._letter; };
        if (setting._letter != 0 && std::none_of(options.begin(), options.end(), isSame))
            options.push_back({setting._letter, setting._takesValue, setting._longName});
    }
    return options;
}

std::vector<std::string> ApSettings::check(const ApCommandLine& line,
                                           const std::vector<ApOption>& options,
                                           const Environment& environment,
                                           const InFile& inFile) const
{
    std::vector<std::string> errors;
    const auto add = [&](const std::string& error)
    {
        const bool isNew = std::find(errors.begin(), errors.end(), error) == errors.end();
        if (!error.empty() && isNew) errors.push_back(error);
    };
    for (const ApSetting& setting : _settings)
    {
        bool isGiven = false;
        for (const ApGiven& given : line.given())
        {
            if (!isOptionOf(setting, options[given._option]._letter)) continue;
            isGiven = true;
            add(errorOfOption(setting, options[given._option], given));
        }
        if (!isGiven) add(errorWithoutOption(setting, environment, inFile));
    }
    return errors;
}

} // namespace Zu
