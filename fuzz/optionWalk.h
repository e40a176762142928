// An independent parser of command-line options, to compare the library's parser with.

#ifndef ZU_FUZZ_OPTIONWALK_H
#define ZU_FUZZ_OPTIONWALK_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace fuzz
{

class OptionWalk
{
public:
    static constexpr int END = -1;
    static constexpr int UNKNOWN = '?';

    // The first word, the program's name, counts as processed.
    OptionWalk(std::vector<std::string> words, std::string options);

    int next();
    const std::optional<std::string>& nextValue();

    const std::optional<std::string>& value() const
    {
        return _value;
    }

    std::size_t index() const
    {
        return _index;
    }

private:
    void takeNextWord();

    std::vector<std::string> _words;
    std::string _options;
    std::optional<std::string> _value;
    std::size_t _index = 0;
    // The unread rest of the word.
    std::string _rest;
};

} // namespace fuzz

#endif
