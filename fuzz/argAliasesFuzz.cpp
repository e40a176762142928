// Lines: the keys of the aliases, separated by blanks, and the words of the command line.

#include "base/inArgBinding.h"

#include "fuzzTarget.h"
#include "optionWalk.h"
#include "support/fakeAlias.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

using support::FakeAlias;
using Texts = std::vector<std::string>;
using Values = std::map<char, std::optional<std::string>>;

// A key is a letter, optionally followed by ":". The two characters with a meaning for the parser
// itself are not letters.
bool isKey(const std::string& text)
{
    if (text.empty() || text[0] == ':' || text[0] == '?') return false;
    return text.size() == 1 || (text.size() == 2 && text[1] == ':');
}

// The values of all letters that belong to an alias, and the number of words consumed.
std::pair<Values, std::size_t> bind(const Texts& keys, const Texts& words)
{
    Values values;
    std::string options;
    for (const std::string& key : keys)
        if (values.emplace(key[0], std::nullopt).second) options += key;
    fuzz::OptionWalk walk(words, options);
    for (;;)
    {
        const int option = walk.next();
        if (option == fuzz::OptionWalk::END || option == fuzz::OptionWalk::UNKNOWN) break;
        values[static_cast<char>(option)] = walk.value().value_or("");
    }
    return {values, walk.index()};
}

void run(fuzz::Input input)
{
    std::vector<std::unique_ptr<FakeAlias>> owners;
    std::set<Zu::InContextAliasBase*> aliases;
    for (const std::string& key : fuzz::split(input.takeLine(), ' '))
    {
        if (!isKey(key)) continue;
        owners.push_back(std::make_unique<FakeAlias>(key));
        aliases.insert(owners.back().get());
    }
    // The set decides which of two aliases of a letter comes first.
    Texts keys;
    for (const Zu::InContextAliasBase* const alias : aliases) keys.emplace_back(alias->getKey());
    Texts words = input.takeLines();
    words.insert(words.begin(), "program");
    Zu::Vector<char*> args;
    for (const std::string& word : words) args.push_back(fuzz::exactCopy(word).release());

    Zu::inBindArguments(aliases, args);
    const Texts left(args.begin(), args.end());
    for (char* const word : args) delete[] word;

    if (keys.empty())
    {
        FUZZ_REQUIRE(left == words);
        return;
    }
    const auto [values, end] = bind(keys, words);
    for (const Zu::InContextAliasBase* const alias : aliases)
    {
        const std::optional<std::string>& expected = values.at(alias->getKey()[0]);
        FUZZ_REQUIRE(alias->isValid() == expected.has_value());
        if (expected) FUZZ_REQUIRE(*expected == alias->getValue());
    }
    words.erase(words.begin() + 1, words.begin() + static_cast<std::ptrdiff_t>(end));
    FUZZ_REQUIRE(left == words);
}

} // namespace

FUZZ_TARGET(argAliases, run);
