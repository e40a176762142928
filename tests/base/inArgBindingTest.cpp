#include "base/inArgBinding.h"

#include "support/fakeAlias.h"

#include <cstring>
#include <deque>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace
{

using support::FakeAlias;

// Binds a command line to aliases with these keys; the set sees them in this order, by address.
struct Binding
{
    Binding(const std::vector<std::string>& keys, const std::vector<std::string>& words)
    {
        const std::size_t size = sizeof(FakeAlias) * (keys.size() + 1);
        _memory = static_cast<char*>(::operator new(size));
        std::set<Zu::InContextAliasBase*> aliases;
        for (std::size_t i = 0; i < keys.size(); ++i)
        {
            _aliases.push_back(new (_memory + i * sizeof(FakeAlias)) FakeAlias(keys[i]));
            aliases.insert(_aliases.back());
        }
        for (const std::string& word : words)
        {
            char* const copy = new char[word.size() + 1];
            std::strcpy(copy, word.c_str());
            _args.push_back(copy);
        }
        Zu::inBindArguments(aliases, _args);
    }

    ~Binding()
    {
        for (char* word : _args) delete[] word;
        for (FakeAlias* alias : _aliases) alias->~FakeAlias();
        ::operator delete(_memory);
    }

    std::vector<std::optional<std::string>> values() const
    {
        std::vector<std::optional<std::string>> values;
        for (const FakeAlias* alias : _aliases)
            values.push_back(alias->isValid() ? std::optional<std::string>(alias->getValue())
                                              : std::nullopt);
        return values;
    }

    std::vector<std::string> left() const
    {
        return {_args.begin(), _args.end()};
    }

    char* _memory;
    std::vector<FakeAlias*> _aliases;
    Zu::Vector<char*> _args;
};

struct BindingCase
{
    const char* _what;
    std::vector<std::string> _keys;
    std::vector<std::string> _words;
    std::vector<std::optional<std::string>> _values;
    std::vector<std::string> _left;
};

TEST(InArgBinding, BindsCommandLines)
{
    const auto none = std::nullopt;
    const BindingCase cases[] = {
        {"no alias leaves all", {}, {"p", "-v", "f"}, {}, {"p", "-v", "f"}},
        {"flag, value and file", {"v", "x:"}, {"p", "-v", "-x", "3", "f"}, {"", "3"}, {"p", "f"}},
        {"unknown option stops", {"v"}, {"p", "-v", "-q", "f"}, {""}, {"p", "-q", "f"}},
        {"nothing behind an unknown",
         {"v", "w"},
         {"p", "-q", "-v"},
         {none, none},
         {"p", "-q", "-v"}},
        {"double dash", {"v"}, {"p", "--", "-v"}, {none}, {"p", "-v"}},
        {"double dash alone", {"v"}, {"p", "--"}, {none}, {"p"}},
        {"word of two dashes and more", {"v"}, {"p", "-v", "--long", "f"}, {""}, {"p", "f"}},
        {"bare dash", {"v"}, {"p", "-v", "-", "f"}, {""}, {"p", "-", "f"}},
        {"file first", {"v"}, {"p", "f", "-v"}, {none}, {"p", "f", "-v"}},
        {"program name only", {"v"}, {"p"}, {none}, {"p"}},
        {"last value wins", {"x:"}, {"p", "-x", "1", "-x2"}, {"2"}, {"p"}},
        {"value missing", {"x:"}, {"p", "-x"}, {""}, {"p"}},
        {"value looks like an option", {"x:", "v"}, {"p", "-x", "-v"}, {"-v", none}, {"p"}},
        {"first key takes a value", {"a:", "a"}, {"p", "-a", "1"}, {"1", "1"}, {"p"}},
        {"first key takes none", {"a", "a:"}, {"p", "-a", "1"}, {"", ""}, {"p", "1"}},
        {"keys of one letter", {"ab", "ac"}, {"p", "-a", "f"}, {"", ""}, {"p", "f"}},
        {"letters of the first key are options",
         {"ab", "ac"},
         {"p", "-b", "f"},
         {none, none},
         {"p", "f"}},
        {"letters of the other are not",
         {"ab", "ac"},
         {"p", "-c", "f"},
         {none, none},
         {"p", "-c", "f"}},
        {"letters in one word",
         {"a", "b", "o:"},
         {"p", "-abofile", "f"},
         {"", "", "file"},
         {"p", "f"}},
        {"unknown letter inside a word",
         {"a", "b"},
         {"p", "-aqb", "f"},
         {"", none},
         {"p", "-aqb", "f"}},
        {"empty value", {"x:"}, {"p", "-x", "", "f"}, {""}, {"p", "f"}},
        {"empty word ends the options", {"v"}, {"p", "", "-v"}, {none}, {"p", "", "-v"}},
        {"empty program name", {"v"}, {"", "-v"}, {""}, {""}},
        {"empty key", {""}, {"p", "-v"}, {none}, {"p", "-v"}},
        {"bytes above 127", {"\xe4:"}, {"p", "-\xe4", "1"}, {"1"}, {"p"}},
    };
    for (const BindingCase& row : cases)
    {
        const Binding binding(row._keys, row._words);
        EXPECT_EQ(binding.values(), row._values) << row._what;
        EXPECT_EQ(binding.left(), row._left) << row._what;
    }
}

TEST(InArgBindingDeathTest, AnEmptyListOfWordsIsFatal)
{
    EXPECT_DEATH(Binding({"v"}, {}), "Assertion failed: argc > 0, file");
}

} // namespace
