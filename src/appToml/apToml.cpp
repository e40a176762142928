#include "appToml/apToml.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>
#include <toml++/toml.h>

namespace Zu
{

namespace
{

using Values = std::vector<ApFileValue>;

int lineOf(const toml::node& node)
{
    return static_cast<int>(node.source().begin.line);
}

// Such as "an array".
std::string typeOf(const toml::node& node)
{
    if (node.is_array()) return "an array";
    if (node.is_floating_point()) return "a floating-point number";
    if (node.is_date()) return "a date";
    if (node.is_time()) return "a time";
    if (node.is_date_time()) return "a date with a time";
    return "a value of an unknown type";
}

ApFileValue valueOf(const std::string& name, const toml::node& node)
{
    const int line = lineOf(node);
    if (const auto* const text = node.as_string())
        return {name, ApFileValue::Kind::Text, text->get(), line};
    if (const auto* const isOn = node.as_boolean())
        return {name, ApFileValue::Kind::Switch, isOn->get() ? "true" : "false", line};
    if (const auto* const number = node.as_integer())
        return {name, ApFileValue::Kind::Integer, std::to_string(number->get()), line};
    throw ApFileError(line,
                      "'" + name + "' is " + typeOf(node) +
                          ", which no setting takes: expected a text, a whole number, true or "
                          "false");
}

void addTable(Values& values, const std::string& prefix, const toml::table& table)
{
    for (const auto& [key, node] : table)
    {
        const std::string name = prefix + std::string(key.str());
        if (const toml::table* const inner = node.as_table())
            addTable(values, name + "::", *inner);
        else
            values.push_back(valueOf(name, node));
    }
}

// How deep tables may stand in each other. The parser recurses, and a stack has an end.
constexpr std::size_t DEEPEST = 64;

// Finds keys of too many parts in front of the parser: counts the dots and braces that are open,
// outside of texts and comments.
class DepthCheck
{
public:
    explicit DepthCheck(std::string_view content) : _rest(content) {}

    void run()
    {
        for (; !_rest.empty(); _rest.remove_prefix(std::min<std::size_t>(1, _rest.size())))
        {
            const char c = _rest.front();
            if (c == '"' || c == '\'')
                skipText(c);
            else if (c == '#')
                _rest.remove_prefix(std::min(_rest.find('\n'), _rest.size() - 1));
            if (!_rest.empty()) take(_rest.front());
        }
    }

private:
    void take(char c)
    {
        if (c == '\n') ++_line;
        if (c == '.' || c == '{') ++_keys.back();
        if (c == '{') _keys.push_back(_keys.back());
        if (c == '}' && _keys.size() > 1) _keys.pop_back();
        // A new key in the same table.
        const bool isNewKey = c == ',' || (c == '\n' && _keys.size() == 1);
        if (isNewKey) _keys.back() = _keys.size() > 1 ? _keys[_keys.size() - 2] : 0;
        if (_keys.back() > DEEPEST)
            throw ApFileError(_line, "a key has more than " + std::to_string(DEEPEST) + " parts");
    }

    // To its last character; three quotes begin a text of several lines.
    void skipText(char quote)
    {
        const std::string threeQuotes(3, quote);
        const bool isLong = _rest.substr(0, 3) == threeQuotes;
        const std::string end = isLong ? threeQuotes : std::string(1, quote);
        _rest.remove_prefix(end.size());
        while (!_rest.empty() && _rest.substr(0, end.size()) != end)
        {
            if (_rest.front() == '\n' && !isLong) return;
            if (_rest.front() == '\n') ++_line;
            const bool isEscape = quote == '"' && _rest.front() == '\\' && _rest.size() > 1;
            if (isEscape && _rest[1] == '\n') ++_line;
            _rest.remove_prefix(isEscape ? 2 : 1);
        }
        _rest.remove_prefix(std::min(end.size() - 1, _rest.size()));
    }

    std::string_view _rest;
    int _line = 1;
    // How deep the present key is, in the file and in each inline table that is open.
    std::vector<std::size_t> _keys = {0};
};

} // namespace

ApToml::~ApToml() = default;

std::vector<ApFileValue> ApToml::read(const std::string& content) const
{
    Values values;
    DepthCheck(content).run();
    try
    {
        addTable(values, "", toml::parse(content));
    }
    catch (const toml::parse_error& error)
    {
        throw ApFileError(static_cast<int>(error.source().begin.line),
                          std::string(error.description()));
    }
    // A table keeps its keys in another order.
    std::stable_sort(values.begin(), values.end(),
                     [](const ApFileValue& a, const ApFileValue& b) { return a._line < b._line; });
    return values;
}

} // namespace Zu
