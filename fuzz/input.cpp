#include "input.h"

#include "fuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fuzz
{

std::uint8_t Input::takeByte()
{
    return isEmpty() ? std::uint8_t{0} : *_next++;
}

std::uint64_t Input::takeNumber()
{
    std::uint64_t number = 0;
    for (int shift = 0; shift < 64; shift += 8) number |= std::uint64_t{takeByte()} << shift;
    return number;
}

std::string Input::takeLine()
{
    const std::uint8_t* const lineEnd = std::find(_next, _end, std::uint8_t{'\n'});
    const std::string line(_next, std::find(_next, lineEnd, std::uint8_t{0}));
    _next = lineEnd == _end ? _end : lineEnd + 1;
    return line;
}

std::string Input::takeText()
{
    const std::string text(_next, std::find(_next, _end, std::uint8_t{0}));
    _next = _end;
    return text;
}

std::vector<std::string> Input::takeLines()
{
    std::vector<std::string> lines;
    while (!isEmpty()) lines.push_back(takeLine());
    return lines;
}

std::vector<std::uint8_t> Input::takeRest()
{
    std::vector<std::uint8_t> rest(_next, _end);
    _next = _end;
    return rest;
}

std::unique_ptr<char[]> exactCopy(const std::string& text)
{
    std::unique_ptr<char[]> copy(new char[text.size() + 1]);
    std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    return copy;
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> pieces(1);
    for (const char character : text)
        if (character == separator)
            pieces.emplace_back();
        else
            pieces.back() += character;
    return pieces;
}

std::map<std::string, Run>& targets()
{
    static std::map<std::string, Run> theTargets;
    return theTargets;
}

Registration::Registration(const char* name, Run run)
{
    targets()[name] = run;
}

void fail(const char* property, const char* file, int line)
{
    const std::string text =
        std::string(file) + ":" + std::to_string(line) + ": does not hold: " + property;
    std::fprintf(stderr, "%s\n", text.c_str());
    std::fflush(stderr);
#ifdef FUZZ_WITH_ENGINE
    std::abort();
#else
    throw PropertyFailure{text};
#endif
}

} // namespace fuzz
