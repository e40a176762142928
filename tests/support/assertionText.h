// Recognises the report of a failed internal assertion in the output of a dying process.

#ifndef ZU_TESTS_ASSERTIONTEXT_H
#define ZU_TESTS_ASSERTIONTEXT_H

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>

namespace support
{

// A matcher for EXPECT_DEATH: the output has a line that begins with "Assertion failed: ", the
// expression and ", file ". If file and line are given, the line continues with the file, ", line "
// and the number, and ends there.
class AssertionText
{
public:
    using is_gtest_matcher = void;

    explicit AssertionText(const std::string& expression)
        : _text("Assertion failed: " + expression + ", file ")
    {
    }

    AssertionText(const std::string& expression, const std::string& file, int line)
        : _text("Assertion failed: " + expression + ", file " + file + ", line " +
                std::to_string(line)),
          _wholeLine(true)
    {
    }

    bool MatchAndExplain(const std::string& output, std::ostream*) const
    {
        for (std::size_t at = output.find(_text); at != std::string::npos;
             at = output.find(_text, at + 1))
        {
            const bool atStart = at == 0 || output[at - 1] == '\n';
            if (atStart && endsWell(output.substr(at + _text.size()))) return true;
        }
        return false;
    }

    void DescribeTo(std::ostream* stream) const
    {
        *stream << "has the line \"" << _text << '"';
    }

    void DescribeNegationTo(std::ostream* stream) const
    {
        *stream << "doesn't have the line \"" << _text << '"';
    }

private:
    // Standard error is a text stream: on some platforms its lines end with a carriage return, too.
    bool endsWell(const std::string& rest) const
    {
        return !_wholeLine || rest.rfind("\n", 0) == 0 || rest.rfind("\r\n", 0) == 0;
    }

    std::string _text;
    bool _wholeLine = false;
};

} // namespace support

#endif
