// Lines: the names of the frames of a call stack, an empty line, and a list of known leaks.

#include "base/hmKnownLeaks.h"

#include "fuzzTarget.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;

struct Stack
{
    // A null name ends it; there is nothing behind it.
    explicit Stack(const Texts& names) : _frames(new Zu::ArrayPtr<char>[names.size() + 1])
    {
        for (std::size_t i = 0; i < names.size(); ++i)
            _frames[i] = Zu::ArrayPtr<char>(fuzz::exactCopy(names[i]).release());
    }

    std::unique_ptr<Zu::ArrayPtr<char>[]> _frames;
};

bool isUnknown(const Stack& stack, const std::string& list)
{
    return Zu::hmIsUnknownLeak(stack._frames.get(), fuzz::exactCopy(list).get());
}

bool beginsWith(const std::string& text, const std::string& beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

bool matches(const Texts& frames, const Texts& patterns)
{
    if (frames.size() < patterns.size()) return false;
    for (std::size_t i = 0; i < patterns.size(); ++i)
        if (!beginsWith(patterns[i], frames[i])) return false;
    return true;
}

// A word that can be a pattern in an entry.
bool isPattern(const std::string& word)
{
    return !word.empty() && !beginsWith(word, "ENDL") &&
           word.find("KNOWNLEAK") == std::string::npos;
}

// Makes a well-formed list of the same lines, and checks its result.
void checkWellFormed(const Texts& frames, const Stack& stack, const std::string& lines)
{
    // A name with a blank can't be written as a single pattern.
    for (const std::string& frame : frames)
        if (frame.find(' ') != std::string::npos) return;
    std::string list;
    bool isKnown = false;
    for (const std::string& line : fuzz::split(lines, '\n'))
    {
        Texts patterns;
        for (const std::string& word : fuzz::split(line, ' '))
            if (isPattern(word)) patterns.push_back(word);
        list += "KNOWNLEAK ";
        for (const std::string& pattern : patterns) list += pattern + " ";
        list += "ENDL\n";
        isKnown = isKnown || matches(frames, patterns);
        FUZZ_REQUIRE(isUnknown(stack, list) == !isKnown);
    }
}

void run(fuzz::Input input)
{
    Texts frames;
    for (std::string name = input.takeLine(); !name.empty(); name = input.takeLine())
        frames.push_back(name);
    const std::string list = input.takeText();
    const Stack stack(frames);

    const bool isUnknownLeak = isUnknown(stack, list);
    const std::size_t entry = list.find("KNOWNLEAK");
    if (entry == std::string::npos || list.find(" ENDL", entry) == std::string::npos)
        FUZZ_REQUIRE(isUnknownLeak);
    // With one more entry no fewer leaks are known.
    if (!isUnknownLeak) FUZZ_REQUIRE(!isUnknown(stack, list + " KNOWNLEAK other ENDL"));
    // An entry without patterns matches every stack, whatever precedes it in the list.
    FUZZ_REQUIRE(!isUnknown(stack, list + " KNOWNLEAK ENDL"));
    checkWellFormed(frames, stack, list);
}

} // namespace

FUZZ_TARGET(knownLeaks, run);
