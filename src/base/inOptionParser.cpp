#include "base/inOptionParser.h"

#include "base/internalAssert.h"
#include "base/textTokens.h"

#include <cstring>

namespace Zu
{

InOptionParser::InOptionParser(int argc, char* const* argv, const char* options)
    : _argc(argc), _argv(argv), _options(options), _value(nullptr), _argIndex(0), _cursor(nullptr)
{
    ZU_INTERNAL_ASSERT(argc > 0);
    leaveWord();
}

int InOptionParser::getOption()
{
    ++_cursor;
    _value = nullptr;
    if (*_cursor == '\0' && !enterNextWord()) return END_OF_OPTIONS;

    const auto option = static_cast<unsigned char>(*_cursor);
    const char* const known = std::strchr(_options, option);
    if (!known) return UNKNOWN_OPTION;
    if (known[1] != ':') return option;

    ++_cursor;
    if (*_cursor != '\0')
        _value = _cursor;
    else if (_argIndex + 1 < _argc)
        _value = _argv[++_argIndex];
    leaveWord();
    return option;
}

const char* InOptionParser::getValue() const
{
    return _value;
}

const char* InOptionParser::gotoNextValue()
{
    if (!_value) return nullptr;
    _value = _argIndex + 1 < _argc ? _argv[++_argIndex] : nullptr;
    leaveWord();
    return _value;
}

int InOptionParser::getArgumentIndex() const
{
    return _argIndex;
}

int InOptionParser::getSubOption(char** optionp, char* const* tokens, char** valuep)
{
    *valuep = nullptr;
    char* const start = *optionp;
    if (cutAt(*optionp, ",=") == '=')
    {
        *valuep = *optionp;
        cutAt(*optionp, ",");
    }
    for (int i = 0; tokens[i]; ++i)
        if (std::strcmp(start, tokens[i]) == 0) return i;
    *valuep = start;
    return -1;
}

// Moves to the first letter of the next word; false if the options end before or at that word.
bool InOptionParser::enterNextWord()
{
    if (++_argIndex == _argc) return false;
    const char* const word = _argv[_argIndex];
    if (word[0] != '-' || word[1] == '\0') return false;
    if (word[1] == '-')
    {
        ++_argIndex;
        return false;
    }
    _cursor = word + 1;
    return true;
}

// Puts the cursor on the last character of the current word, so that the next option is looked for
// in the following word. An empty word has no last character; any text of one character will do.
void InOptionParser::leaveWord()
{
    const char* const word = _argv[_argIndex];
    const std::size_t length = std::strlen(word);
    _cursor = length > 0 ? word + length - 1 : "-";
}

} // namespace Zu
