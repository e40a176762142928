#include "optionWalk.h"

#include <utility>

namespace fuzz
{

OptionWalk::OptionWalk(std::vector<std::string> words, std::string options)
    : _words(std::move(words)), _options(std::move(options))
{
}

int OptionWalk::next()
{
    _value.reset();
    if (_rest.empty())
    {
        if (++_index >= _words.size()) return END;
        const std::string& word = _words[_index];
        if (word.size() < 2 || word.front() != '-') return END;
        if (word[1] == '-')
        {
            ++_index;
            return END;
        }
        _rest = word.substr(1);
    }
    const char letter = _rest.front();
    _rest.erase(0, 1);
    const std::size_t place = _options.find(letter);
    if (place == std::string::npos) return UNKNOWN;
    if (_options.substr(place + 1, 1) == ":")
    {
        if (_rest.empty())
            takeNextWord();
        else
            _value = std::exchange(_rest, "");
    }
    return static_cast<unsigned char>(letter);
}

const std::optional<std::string>& OptionWalk::nextValue()
{
    if (!_value) return _value;
    _value.reset();
    takeNextWord();
    return _value;
}

void OptionWalk::takeNextWord()
{
    if (_index + 1 < _words.size()) _value = _words[++_index];
}

} // namespace fuzz
