// The bytes of an input, taken from the front.

#ifndef ZU_FUZZ_INPUT_H
#define ZU_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace fuzz
{

class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : _next(data), _end(data + size) {}

    bool isEmpty() const
    {
        return _next == _end;
    }

    // 0 at the end.
    std::uint8_t takeByte();

    // Eight bytes, the lowest first.
    std::uint64_t takeNumber();

    // Up to the next line feed, which is dropped. The result is a C string: a NUL ends it.
    std::string takeLine();

    // The rest of the input, as a text.
    std::string takeText();

    std::vector<std::string> takeLines();

    std::vector<std::uint8_t> takeRest();

private:
    const std::uint8_t* _next;
    const std::uint8_t* _end;
};

// The text in memory of exactly its size, so that AddressSanitizer detects a read beyond it.
std::unique_ptr<char[]> exactCopy(const std::string& text);

// The pieces between the separators; an empty text has one piece.
std::vector<std::string> split(const std::string& text, char separator);

} // namespace fuzz

#endif
