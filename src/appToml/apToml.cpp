#include "appToml/apToml.h"

#include <algorithm>
#include <cstdint>
#include <limits>
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

} // namespace

ApToml::~ApToml() = default;

std::vector<ApFileValue> ApToml::read(const std::string& content) const
{
    Values values;
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
