// Lines: "options", the option string, what to do after each option ("n" requests one more value),
// and the words; or "sub", the tokens, and the text of sub-options.

#include "base/inOptionParser.h"

#include "fuzzTarget.h"
#include "optionWalk.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;
using Zu::InOptionParser;

// The array ends with its last word, which detects a parser that relies on a null behind it.
struct Words
{
    explicit Words(const Texts& texts) : _pointers(new char*[texts.size()])
    {
        for (const std::string& text : texts)
        {
            _copies.push_back(fuzz::exactCopy(text));
            _pointers[_copies.size() - 1] = _copies.back().get();
        }
    }

    std::vector<std::unique_ptr<char[]>> _copies;
    std::unique_ptr<char*[]> _pointers;
};

bool isSame(const char* text, const std::optional<std::string>& expected)
{
    return expected ? text && *expected == text : !text;
}

void runOptions(fuzz::Input input)
{
    const std::string options = input.takeLine();
    const std::string actions = input.takeLine();
    Texts texts = input.takeLines();
    // The parser asserts that there is a word.
    if (texts.empty()) texts.emplace_back("program");

    const Words words(texts);
    const auto optionsCopy = fuzz::exactCopy(options);
    InOptionParser parser(static_cast<int>(texts.size()), words._pointers.get(), optionsCopy.get());
    fuzz::OptionWalk walk(texts, options);
    FUZZ_REQUIRE(parser.getArgumentIndex() == 0);
    FUZZ_REQUIRE(!parser.getValue());
    std::size_t action = 0;
    for (;;)
    {
        const int option = parser.getOption();
        FUZZ_REQUIRE(option == walk.next());
        FUZZ_REQUIRE(isSame(parser.getValue(), walk.value()));
        FUZZ_REQUIRE(parser.getArgumentIndex() == static_cast<int>(walk.index()));
        if (option == fuzz::OptionWalk::END) return;
        FUZZ_REQUIRE(option > 0 && option < 256);
        for (; action < actions.size() && actions[action] == 'n'; ++action)
        {
            FUZZ_REQUIRE(isSame(parser.gotoNextValue(), walk.nextValue()));
            FUZZ_REQUIRE(isSame(parser.getValue(), walk.value()));
            FUZZ_REQUIRE(parser.getArgumentIndex() == static_cast<int>(walk.index()));
        }
        ++action;
    }
}

void runSubOptions(fuzz::Input input)
{
    const Texts names = fuzz::split(input.takeLine(), ' ');
    const std::string text = input.takeText();
    const Words tokens(names);
    std::vector<char*> table(tokens._pointers.get(), tokens._pointers.get() + names.size());
    table.push_back(nullptr);

    const auto copy = fuzz::exactCopy(text);
    char* rest = copy.get();
    std::string left = text;
    // At the end of the text the splitter returns an empty name, again and again.
    for (bool isAtEnd = false; !isAtEnd;)
    {
        isAtEnd = left.empty();
        const std::string piece = left.substr(0, left.find(','));
        left.erase(0, piece.size() + 1);
        const std::string name = piece.substr(0, piece.find('='));
        std::optional<std::string> value;
        if (name.size() < piece.size()) value = piece.substr(name.size() + 1);
        const auto found = std::find(names.begin(), names.end(), name);

        char* given = copy.get();
        const int index = InOptionParser::getSubOption(&rest, table.data(), &given);
        if (found == names.end())
        {
            FUZZ_REQUIRE(index == -1);
            FUZZ_REQUIRE(isSame(given, name));
        }
        else
        {
            FUZZ_REQUIRE(index == found - names.begin());
            FUZZ_REQUIRE(isSame(given, value));
        }
        FUZZ_REQUIRE(left == rest);
        FUZZ_REQUIRE(rest == copy.get() + (text.size() - left.size()));
    }
}

void run(fuzz::Input input)
{
    if (input.takeLine() == "sub")
        runSubOptions(input);
    else
        runOptions(input);
}

} // namespace

FUZZ_TARGET(optionParser, run);
