#include "base/inArgBinding.h"

#include "base/inContextAliasBase.h"
#include "base/inOptionParser.h"
#include "base/internalAssert.h"

#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Zu
{

namespace
{

// "x" and "x:" are the same option.
struct FirstCharacterLess
{
    bool operator()(const std::string& a, const std::string& b) const
    {
        return static_cast<unsigned char>(a.c_str()[0]) < static_cast<unsigned char>(b.c_str()[0]);
    }
};

using OptionMap = std::map<std::string, std::optional<std::string>, FirstCharacterLess>;

void readOptions(InOptionParser& parser, OptionMap& options)
{
    for (;;)
    {
        const int option = parser.getOption();
        if (option == InOptionParser::END_OF_OPTIONS || option == InOptionParser::UNKNOWN_OPTION)
            return;
        const char* const value = parser.getValue();
        options[std::string(1, static_cast<char>(option))] = value ? value : "";
    }
}

void eraseConsumed(Vector<char*>& args, int end)
{
    for (int i = 1; i < end; ++i)
    {
        delete[] args[1];
        args.erase(args.begin() + 1);
    }
}

} // namespace

void inBindArguments(const std::set<InContextAliasBase*>& aliases, Vector<char*>& args)
{
    OptionMap options;
    std::size_t optLen = 0;
    for (const InContextAliasBase* alias : aliases)
        if (options.emplace(alias->getKey(), std::nullopt).second)
            optLen += std::strlen(alias->getKey());
    if (options.empty()) return;

    std::string optionString;
    for (const auto& [key, value] : options) optionString += key;
    ZU_INTERNAL_ASSERT_TEXT(optionString.size() <= optLen,
                            "std::strlen( apOptStr.get() ) <= optLen");

    InOptionParser parser(static_cast<int>(args.size()), args.data(), optionString.c_str());
    readOptions(parser, options);
    for (InContextAliasBase* alias : aliases)
    {
        const std::optional<std::string>& value = options[alias->getKey()];
        alias->initialize(value ? value->c_str() : nullptr);
    }
    eraseConsumed(args, parser.getArgumentIndex());
}

} // namespace Zu
