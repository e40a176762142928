#include "base/inOptionParser.h"

#include "support/assertionText.h"
#include "support/rowName.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace
{

using Zu::InOptionParser;

constexpr int UNKNOWN = 63;
constexpr int END = -1;

// An argument vector whose words are in arrays of exactly their size, so that an access outside one
// is detected.
class Arguments
{
public:
    explicit Arguments(const std::vector<std::string>& words)
    {
        for (const std::string& word : words)
        {
            _words.emplace_back(word.c_str(), word.c_str() + word.size() + 1);
            _words.back().shrink_to_fit();
        }
        for (std::vector<char>& word : _words) _pointers.push_back(word.data());
    }

    int count() const
    {
        return static_cast<int>(_pointers.size());
    }
    char** words()
    {
        return _pointers.data();
    }
    const char* word(std::size_t index) const
    {
        return _pointers[index];
    }

private:
    std::vector<std::vector<char>> _words;
    std::vector<char*> _pointers;
};

using Value = std::optional<std::string>;

Value valueOf(const char* text)
{
    return text ? Value(text) : std::nullopt;
}

// The result of one call of getOption().
struct Step
{
    int _option;
    Value _value;

    friend bool operator==(const Step&, const Step&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Step& step)
    {
        return stream << '(' << step._option << ", " << step._value.value_or("none") << ')';
    }
};

// All steps up to the end of the options; `index` becomes the index at that point.
std::vector<Step> parse(const std::vector<std::string>& words, const char* options, int& index)
{
    Arguments arguments(words);
    InOptionParser parser(arguments.count(), arguments.words(), options);
    std::vector<Step> steps;
    for (int option = parser.getOption(); option != END; option = parser.getOption())
        steps.push_back({option, valueOf(parser.getValue())});
    EXPECT_EQ(parser.getValue(), nullptr);
    index = parser.getArgumentIndex();
    return steps;
}

struct ParseRow
{
    const char* _name;
    std::vector<std::string> _words;
    const char* _options;
    std::vector<Step> _steps;
    int _index;
};

class InOptionParserTable : public testing::TestWithParam<ParseRow>
{
};

TEST_P(InOptionParserTable, FindsTheOptionsAndTheirEnd)
{
    const ParseRow& row = GetParam();
    int index = -1;
    EXPECT_EQ(parse(row._words, row._options, index), row._steps);
    EXPECT_EQ(index, row._index);
}

const Value NONE = std::nullopt;

const ParseRow PARSE_ROWS[] = {
    {"OnlyTheName", {"p"}, "a", {}, 1},
    {"OnlyAnEmptyName", {""}, "a", {}, 1},
    {"AnEmptyNameAndAnOption", {"", "-a"}, "a", {{'a', NONE}}, 2},
    {"TheNameIsNotParsed", {"-a", "-b"}, "ab", {{'b', NONE}}, 2},
    {"ANonOption", {"p", "file", "-a"}, "a", {}, 1},
    {"AnEmptyWordIsANonOption", {"p", "-a", "", "-a"}, "a", {{'a', NONE}}, 2},
    {"ABareDashIsNotConsumed", {"p", "-a", "-", "-a"}, "a", {{'a', NONE}}, 2},
    {"TwoDashesAreConsumed", {"p", "-a", "--", "-a"}, "a", {{'a', NONE}}, 3},
    {"TwoDashesAsTheLastWord", {"p", "--"}, "a", {}, 2},
    {"TwoDashesAndMoreAreConsumed", {"p", "--all", "-a"}, "al", {}, 2},
    {"ThreeDashesAreConsumed", {"p", "---", "-a"}, "a-", {}, 2},
    {"TwoFlagsInOneWord", {"p", "-ab"}, "ab", {{'a', NONE}, {'b', NONE}}, 2},
    {"TheOrderOfTheWordCounts", {"p", "-ba"}, "ab", {{'b', NONE}, {'a', NONE}}, 2},
    {"AFlagTwice", {"p", "-aa", "-a"}, "a", {{'a', NONE}, {'a', NONE}, {'a', NONE}}, 3},
    {"AValueInTheWord", {"p", "-otext", "x"}, "o:", {{'o', "text"}}, 2},
    {"AValueInTheNextWord", {"p", "-o", "text", "x"}, "o:", {{'o', "text"}}, 3},
    {"AValueMayBeginWithADash", {"p", "-o", "-a", "-a"}, "ao:", {{'o', "-a"}, {'a', NONE}}, 4},
    {"AValueMayBeTwoDashes", {"p", "-o", "--", "-a"}, "ao:", {{'o', "--"}, {'a', NONE}}, 4},
    {"AValueMayBeABareDash", {"p", "-o", "-", "-a"}, "ao:", {{'o', "-"}, {'a', NONE}}, 4},
    {"AValueMayBeEmpty", {"p", "-o", "", "-a"}, "ao:", {{'o', ""}, {'a', NONE}}, 4},
    {"AnEmptyValueAtTheEnd", {"p", "-o", ""}, "o:", {{'o', ""}}, 3},
    {"AMissingValue", {"p", "-o"}, "o:", {{'o', NONE}}, 2},
    {"AMissingValueBehindAFlag", {"p", "-ao"}, "ao:", {{'a', NONE}, {'o', NONE}}, 2},
    {"AFlagAndAValueInOneWord", {"p", "-aob"}, "abo:", {{'a', NONE}, {'o', "b"}}, 2},
    {"AFlagAndAValueInTheNext", {"p", "-ao", "b"}, "abo:", {{'a', NONE}, {'o', "b"}}, 3},
    {"TwoValues", {"p", "-o1", "-o", "2"}, "o:", {{'o', "1"}, {'o', "2"}}, 4},
    {"TheValueStaysWithItsOption", {"p", "-o1", "-a"}, "ao:", {{'o', "1"}, {'a', NONE}}, 3},
    {"AnUnknownLetter", {"p", "-q"}, "a", {{UNKNOWN, NONE}}, 2},
    {"TheWordGoesOnBehindAnUnknown",
     {"p", "-aqb"},
     "ab",
     {{'a', NONE}, {UNKNOWN, NONE}, {'b', NONE}},
     2},
    {"AnUnknownLetterTakesNoValue", {"p", "-q", "x"}, "a", {{UNKNOWN, NONE}}, 2},
    {"NoOptionsAtAll", {"p", "-a"}, "", {{UNKNOWN, NONE}}, 2},
    {"CaseCounts", {"p", "-A"}, "a", {{UNKNOWN, NONE}}, 2},
    {"ADashInsideAWordIsALetter",
     {"p", "-a-a"},
     "a",
     {{'a', NONE}, {UNKNOWN, NONE}, {'a', NONE}},
     2},
    {"AColonIsLookedUpLikeAnyLetter", {"p", "-:"}, "o:", {{':', NONE}}, 2},
    {"AQuestionMarkMayBeAnOption", {"p", "-?"}, "?", {{'?', NONE}}, 2},
    {"TheFirstOfALettersPlacesCounts", {"p", "-a", "x"}, "aa:", {{'a', NONE}}, 2},
    {"OptionsEndAtTheFirstNonOption",
     {"p", "-a", "-o", "3", "file", "-b"},
     "abo:",
     {{'a', NONE}, {'o', "3"}},
     4},
};

INSTANTIATE_TEST_SUITE_P(Table, InOptionParserTable, testing::ValuesIn(PARSE_ROWS),
                         support::RowName());

TEST(InOptionParser, StandsOnTheProgramsNameBeforeTheFirstCall)
{
    Arguments arguments({"program", "-a"});
    const InOptionParser parser(arguments.count(), arguments.words(), "a");
    EXPECT_EQ(parser.getArgumentIndex(), 0);
    EXPECT_EQ(parser.getValue(), nullptr);
}

TEST(InOptionParser, ABareDashEndsTheOptionsAndIsNotConsumed)
{
    Arguments arguments({"p", "-a", "-", "x"});
    InOptionParser parser(arguments.count(), arguments.words(), "a");
    EXPECT_EQ(parser.getOption(), 'a');
    EXPECT_EQ(parser.getOption(), -1);
    EXPECT_EQ(parser.getArgumentIndex(), 2);
}

TEST(InOptionParser, AWordThatBeginsWithTwoDashesEndsTheOptionsAndIsConsumed)
{
    for (const char* const word : {"--", "--a", "--all=1", "---"})
    {
        Arguments arguments({"p", word, "-a"});
        InOptionParser parser(arguments.count(), arguments.words(), "a");
        EXPECT_EQ(parser.getOption(), -1) << word;
        EXPECT_EQ(parser.getArgumentIndex(), 2) << word;
    }
}

TEST(InOptionParser, AnUnknownLetterLeavesTheIndexOnItsWord)
{
    Arguments arguments({"p", "-a", "-qa", "x"});
    InOptionParser parser(arguments.count(), arguments.words(), "a");
    EXPECT_EQ(parser.getOption(), 'a');
    EXPECT_EQ(parser.getArgumentIndex(), 1);
    EXPECT_EQ(parser.getOption(), 63);
    EXPECT_EQ(parser.getArgumentIndex(), 2);
    EXPECT_EQ(parser.getValue(), nullptr);
    EXPECT_EQ(parser.getOption(), 'a');
    EXPECT_EQ(parser.getArgumentIndex(), 2);
}

TEST(InOptionParser, TheIndexStandsOnTheWordOfTheValue)
{
    Arguments arguments({"p", "-ov", "-o", "v", "-ab"});
    InOptionParser parser(arguments.count(), arguments.words(), "abo:");
    const int indices[] = {1, 3, 4, 4};
    for (const int index : indices)
    {
        ASSERT_NE(parser.getOption(), -1);
        EXPECT_EQ(parser.getArgumentIndex(), index);
    }
    EXPECT_EQ(parser.getOption(), -1);
    EXPECT_EQ(parser.getArgumentIndex(), 5);
}

TEST(InOptionParser, ValuesAreTheWordsThemselvesAndNoCopies)
{
    Arguments arguments({"p", "-otext", "-o", "text"});
    InOptionParser parser(arguments.count(), arguments.words(), "o:");
    parser.getOption();
    EXPECT_EQ(parser.getValue(), arguments.word(1) + 2);
    parser.getOption();
    EXPECT_EQ(parser.getValue(), arguments.word(3));
}

TEST(InOptionParser, TheNextOptionClearsTheValue)
{
    Arguments arguments({"p", "-otext", "-a"});
    InOptionParser parser(arguments.count(), arguments.words(), "ao:");
    parser.getOption();
    EXPECT_STREQ(parser.getValue(), "text");
    EXPECT_STREQ(parser.getValue(), "text");
    parser.getOption();
    EXPECT_EQ(parser.getValue(), nullptr);
}

TEST(InOptionParser, ParsersDoNotShareTheirPlace)
{
    Arguments arguments({"p", "-ab"});
    InOptionParser first(arguments.count(), arguments.words(), "ab");
    InOptionParser second(arguments.count(), arguments.words(), "ab");
    EXPECT_EQ(first.getOption(), 'a');
    EXPECT_EQ(second.getOption(), 'a');
    EXPECT_EQ(first.getOption(), 'b');
    EXPECT_EQ(second.getOption(), 'b');
}

TEST(InOptionParser, FurtherValuesAreTheNextWordsWhateverTheyLookLike)
{
    Arguments arguments({"p", "-o", "one", "two", "-a", "", "--", "-b"});
    InOptionParser parser(arguments.count(), arguments.words(), "abo:");
    EXPECT_EQ(parser.getOption(), 'o');
    EXPECT_STREQ(parser.getValue(), "one");
    int index = 2;
    for (const char* const value : {"two", "-a", "", "--"})
    {
        EXPECT_STREQ(parser.gotoNextValue(), value);
        EXPECT_STREQ(parser.getValue(), value);
        EXPECT_EQ(parser.getArgumentIndex(), ++index);
    }
    EXPECT_EQ(parser.getOption(), 'b');
    EXPECT_EQ(parser.getOption(), -1);
    EXPECT_EQ(parser.getArgumentIndex(), 8);
}

TEST(InOptionParser, AFurtherValueFollowsOneInTheOptionsOwnWord)
{
    Arguments arguments({"p", "-oone", "two", "-a"});
    InOptionParser parser(arguments.count(), arguments.words(), "ao:");
    EXPECT_EQ(parser.getOption(), 'o');
    EXPECT_STREQ(parser.gotoNextValue(), "two");
    EXPECT_EQ(parser.getOption(), 'a');
}

TEST(InOptionParser, WithNoWordLeftThereIsNoFurtherValueAndTheIndexStays)
{
    Arguments arguments({"p", "-o", "one"});
    InOptionParser parser(arguments.count(), arguments.words(), "o:");
    EXPECT_EQ(parser.getOption(), 'o');
    EXPECT_EQ(parser.gotoNextValue(), nullptr);
    EXPECT_EQ(parser.getValue(), nullptr);
    EXPECT_EQ(parser.getArgumentIndex(), 2);
    EXPECT_EQ(parser.gotoNextValue(), nullptr);
    EXPECT_EQ(parser.getArgumentIndex(), 2);
    EXPECT_EQ(parser.getOption(), -1);
    EXPECT_EQ(parser.getArgumentIndex(), 3);
}

TEST(InOptionParser, WithNoWordLeftTheRestOfTheWordIsNoOption)
{
    Arguments arguments({"p", "-oaaa"});
    InOptionParser parser(arguments.count(), arguments.words(), "ao:");
    EXPECT_EQ(parser.getOption(), 'o');
    EXPECT_EQ(parser.gotoNextValue(), nullptr);
    EXPECT_EQ(parser.getArgumentIndex(), 1);
    EXPECT_EQ(parser.getOption(), -1);
    EXPECT_EQ(parser.getArgumentIndex(), 2);
}

TEST(InOptionParser, WithoutAValueThereIsNoFurtherOne)
{
    Arguments arguments({"p", "-ab", "word"});
    InOptionParser parser(arguments.count(), arguments.words(), "ab");
    EXPECT_EQ(parser.gotoNextValue(), nullptr);
    EXPECT_EQ(parser.getOption(), 'a');
    EXPECT_EQ(parser.gotoNextValue(), nullptr);
    EXPECT_EQ(parser.getArgumentIndex(), 1);
    EXPECT_EQ(parser.getOption(), 'b');
    EXPECT_EQ(parser.getOption(), -1);
    EXPECT_EQ(parser.getArgumentIndex(), 2);
}

TEST(InOptionParser, AnEmptyVectorIsADefectOfTheCaller)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Arguments arguments({"p"});
    EXPECT_DEATH(InOptionParser(0, arguments.words(), "a"), support::AssertionText("argc > 0"));
    EXPECT_DEATH(InOptionParser(-1, arguments.words(), "a"), support::AssertionText("argc > 0"));
}

// The same walk over indices and strings, one letter at a time.
class Reference
{
public:
    Reference(std::vector<std::string> words, std::string options)
        : _words(std::move(words)), _options(std::move(options)), _letter(_words[0].size())
    {
    }

    int option()
    {
        _hasValue = false;
        if (_letter == _words[_word].size())
        {
            ++_word;
            _letter = 1;
            if (_word == _words.size()) return END;
            const std::string& word = _words[_word];
            if (word.size() < 2 || word[0] != '-') return END;
            if (word[1] == '-')
            {
                ++_word;
                return END;
            }
        }
        const char letter = _words[_word][_letter++];
        const std::size_t place = _options.find(letter);
        if (place == std::string::npos) return UNKNOWN;
        if (_options.substr(place + 1, 1) == ":")
        {
            if (_letter < _words[_word].size())
                setValue(_words[_word].substr(_letter));
            else if (_word + 1 < _words.size())
                setValue(_words[++_word]);
            _letter = _words[_word].size();
        }
        return letter;
    }

    void nextValue()
    {
        if (!_hasValue) return;
        _hasValue = false;
        if (_word + 1 < _words.size()) setValue(_words[++_word]);
        _letter = _words[_word].size();
    }

    Value value() const
    {
        return _hasValue ? Value(_value) : NONE;
    }
    int index() const
    {
        return static_cast<int>(_word);
    }

private:
    void setValue(const std::string& value)
    {
        _hasValue = true;
        _value = value;
    }

    std::vector<std::string> _words;
    std::string _options;
    std::size_t _word = 0;
    // The next letter of that word.
    std::size_t _letter;
    bool _hasValue = false;
    std::string _value;
};

TEST(InOptionParser, RandomWordsAreWalkedAsTheReferenceWalksThem)
{
    std::mt19937 random(31);
    const char letters[] = "aabbo-o:x";
    const char* const optionStrings[] = {"ab", "abo:", "a:b:", "o:a", "ab:o:x", "b-:", ""};
    std::size_t options = 0;
    for (int round = 0; round < 20000; ++round)
    {
        std::vector<std::string> words(1 + random() % 6);
        for (std::string& word : words)
        {
            // Most words look like options.
            if (random() % 8 != 0) word = "-";
            for (std::size_t length = random() % 4; length > 0; --length)
                word += letters[random() % (sizeof letters - 1)];
        }
        const char* const optionString = optionStrings[random() % std::size(optionStrings)];

        Arguments arguments(words);
        InOptionParser parser(arguments.count(), arguments.words(), optionString);
        Reference reference(words, optionString);
        int option = 0;
        do
        {
            option = parser.getOption();
            ASSERT_EQ(option, reference.option());
            ASSERT_EQ(valueOf(parser.getValue()), reference.value());
            ASSERT_EQ(parser.getArgumentIndex(), reference.index());
            if (option == END) break;
            ++options;
            for (std::size_t further = random() % 3; further > 0; --further)
            {
                const Value value = valueOf(parser.gotoNextValue());
                reference.nextValue();
                ASSERT_EQ(value, reference.value());
                ASSERT_EQ(valueOf(parser.getValue()), reference.value());
                ASSERT_EQ(parser.getArgumentIndex(), reference.index());
            }
        } while (true);
    }
    EXPECT_GT(options, 20000U);
}

struct SubOptionRow
{
    const char* _name;
    std::string _text;
    int _result;
    Value _value;
    std::string _rest;
};

class GetSubOption : public testing::TestWithParam<SubOptionRow>
{
};

char tokenA[] = "a";
char tokenB[] = "b";
char tokenLong[] = "longer";
char tokenPrefix[] = "long";
char* const tokens[] = {tokenA, tokenB, tokenLong, tokenPrefix, tokenA, nullptr};

TEST_P(GetSubOption, SplitsOffTheFirstOne)
{
    const SubOptionRow& row = GetParam();
    Arguments text({row._text});
    char* position = *text.words();
    char before = 'x';
    char* value = &before;
    EXPECT_EQ(InOptionParser::getSubOption(&position, tokens, &value), row._result);
    EXPECT_EQ(valueOf(value), row._value);
    EXPECT_STREQ(position, row._rest.c_str());
    EXPECT_EQ(position, *text.words() + (row._text.size() - row._rest.size()));
}

INSTANTIATE_TEST_SUITE_P(
    Table, GetSubOption,
    testing::Values(SubOptionRow{"ANameAlone", "a", 0, NONE, ""},
                    SubOptionRow{"ANameAndAnother", "a,b", 0, NONE, "b"},
                    SubOptionRow{"AValueAndAnother", "a=1,b", 0, "1", "b"},
                    SubOptionRow{"AValueAlone", "b=some text", 1, "some text", ""},
                    SubOptionRow{"ALongName", "longer,long", 2, NONE, "long"},
                    SubOptionRow{"ANameThatBeginsAnother", "long", 3, NONE, ""},
                    SubOptionRow{"TheBeginningOfAName", "lon", -1, "lon", ""},
                    SubOptionRow{"ANameAndMore", "ab", -1, "ab", ""},
                    SubOptionRow{"AnEmptyValue", "a=", 0, "", ""},
                    SubOptionRow{"AnEmptyValueAndAnother", "a=,b", 0, "", "b"},
                    SubOptionRow{"AnEqualsSignInTheValue", "a=1=2,b", 0, "1=2", "b"},
                    SubOptionRow{"ACommaAtTheEnd", "a,", 0, NONE, ""},
                    SubOptionRow{"ACommaBehindTheValue", "a=1,", 0, "1", ""},
                    SubOptionRow{"AnEqualsSignOfTheNext", "a,b=1", 0, NONE, "b=1"},
                    SubOptionRow{"Unknown", "c", -1, "c", ""},
                    SubOptionRow{"UnknownAndAnother", "c,b", -1, "c", "b"},
                    SubOptionRow{"UnknownWithAValue", "c=1,b", -1, "c", "b"},
                    SubOptionRow{"Empty", "", -1, "", ""},
                    SubOptionRow{"AnEmptyName", ",b", -1, "", "b"},
                    SubOptionRow{"AnEmptyNameWithAValue", "=1,b", -1, "", "b"},
                    SubOptionRow{"CaseCounts", "A", -1, "A", ""}),
    support::RowName());

TEST(InOptionParser, SubOptionsAreSplitOneByOne)
{
    Arguments text({"a=1,b"});
    char* position = *text.words();
    char* value = nullptr;
    EXPECT_EQ(InOptionParser::getSubOption(&position, tokens, &value), 0);
    EXPECT_STREQ(value, "1");
    EXPECT_STREQ(position, "b");
    EXPECT_EQ(InOptionParser::getSubOption(&position, tokens, &value), 1);
    EXPECT_EQ(value, nullptr);
    EXPECT_STREQ(position, "");
}

TEST(InOptionParser, ASubOptionsNameAndValueStandInTheTextItself)
{
    Arguments text({"c=1,a=2"});
    char* const begin = *text.words();
    char* position = begin;
    char* value = nullptr;
    EXPECT_EQ(InOptionParser::getSubOption(&position, tokens, &value), -1);
    EXPECT_EQ(value, begin);
    EXPECT_EQ(position, begin + 4);
    EXPECT_EQ(InOptionParser::getSubOption(&position, tokens, &value), 0);
    EXPECT_EQ(value, begin + 6);
    EXPECT_EQ(position, begin + 7);
    EXPECT_EQ(std::string(begin, 8), std::string("c\0001\0a\0002", 7) + '\0');
}

TEST(InOptionParser, WithoutTokensEverySubOptionIsUnknown)
{
    char* const none[] = {nullptr};
    Arguments text({"a"});
    char* position = *text.words();
    char* value = nullptr;
    EXPECT_EQ(InOptionParser::getSubOption(&position, none, &value), -1);
    EXPECT_STREQ(value, "a");
}

} // namespace
