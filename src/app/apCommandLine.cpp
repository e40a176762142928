#include "app/apCommandLine.h"

#include "app/apNearest.h"

#include <algorithm>

namespace Zu
{

ApCommandLine::ApCommandLine(const std::vector<ApOption>& options, const Words& words)
    : _options(options)
{
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        const std::string& word = words[i];
        if (word == "--")
        {
            _words.insert(_words.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          words.end());
            return;
        }
        if (word.size() < 2 || word[0] != '-')
            _words.push_back(word);
        else if (word[1] == '-')
            readLongName(words, i);
        else
            readLetters(words, i);
    }
}

void ApCommandLine::readLetters(const Words& words, std::size_t& index)
{
    const std::string& word = words[index];
    for (std::size_t i = 1; i < word.size(); ++i)
    {
        const std::string spelling = std::string("-") + word[i];
        const auto option =
            std::find_if(_options.begin(), _options.end(),
                         [&](const ApOption& known) { return known._letter == word[i]; });
        if (option == _options.end())
        {
            _errors.push_back("unknown option '" + spelling + "'" +
                              (word.size() > 2 ? " in '" + word + "'" : ""));
            return;
        }
        ApGiven given{static_cast<std::size_t>(option - _options.begin()), spelling, {}};
        if (!option->_takesValue)
        {
            _given.push_back(given);
            continue;
        }
        if (i + 1 < word.size())
            given._value = word.substr(i + 1);
        else if (index + 1 < words.size())
            given._value = words[++index];
        else
        {
            _errors.push_back("option '" + spelling + "' needs a value");
            return;
        }
        _given.push_back(given);
        return;
    }
}

void ApCommandLine::readLongName(const Words& words, std::size_t& index)
{
    const std::string& word = words[index];
    const std::size_t equals = word.find('=');
    const std::string spelling = word.substr(0, equals);
    const auto option =
        std::find_if(_options.begin(), _options.end(),
                     [&](const ApOption& known)
                     { return !known._longName.empty() && "--" + known._longName == spelling; });
    if (option == _options.end())
    {
        _errors.push_back("unknown option '" + spelling + "'" +
                          apDidYouMean(spelling, longNames()));
        return;
    }
    ApGiven given{static_cast<std::size_t>(option - _options.begin()), spelling, {}};
    if (equals != std::string::npos && !option->_takesValue)
    {
        _errors.push_back("option '" + spelling + "' takes no value");
        return;
    }
    if (equals != std::string::npos)
        given._value = word.substr(equals + 1);
    else if (option->_takesValue && index + 1 < words.size())
        given._value = words[++index];
    else if (option->_takesValue)
    {
        _errors.push_back("option '" + spelling + "' needs a value");
        return;
    }
    _given.push_back(given);
}

std::vector<std::string> ApCommandLine::longNames() const
{
    std::vector<std::string> names;
    for (const ApOption& option : _options)
        if (!option._longName.empty()) names.push_back("--" + option._longName);
    return names;
}

std::vector<std::string> ApCommandLine::inLetters() const
{
    std::vector<std::string> result;
    for (const ApGiven& given : _given)
    {
        const ApOption& option = _options[given._option];
        if (option._letter == 0) continue;
        result.emplace_back(std::string("-") + option._letter);
        if (option._takesValue) result.push_back(given._value);
    }
    if (_words.empty()) return result;
    result.emplace_back("--");
    result.insert(result.end(), _words.begin(), _words.end());
    return result;
}

} // namespace Zu
