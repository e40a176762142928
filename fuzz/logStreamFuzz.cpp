// A byte for the size of the ring, and a byte for each action, followed by its operands.

#include "base/lgStream.h"

#include "fuzzTarget.h"
#include "streamModel.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace
{

using fuzz::StreamModel;

class Stream : public Zu::LgStream
{
public:
    explicit Stream(std::uint32_t size) : LgStream(size) {}
};

std::string printed(const char* format, auto value)
{
    char text[400];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string textOfDouble(double value)
{
    return std::isnan(value) ? "nan" : printed("%f", value);
}

template <class T> void insert(Stream& stream, StreamModel& model, T value, const std::string& text)
{
    stream << value;
    model.insert(text);
}

void insertNumber(Stream& stream, StreamModel& model, int kind, std::uint64_t bits)
{
    const auto number = static_cast<long long>(bits);
    switch (kind)
    {
    case 0:
        return insert(stream, model, static_cast<short>(number),
                      std::to_string(static_cast<short>(number)));
    case 1:
        return insert(stream, model, static_cast<unsigned short>(number),
                      std::to_string(static_cast<unsigned short>(number)));
    case 2:
        return insert(stream, model, static_cast<int>(number),
                      std::to_string(static_cast<int>(number)));
    case 3:
        return insert(stream, model, static_cast<unsigned>(number),
                      std::to_string(static_cast<unsigned>(number)));
    case 4:
        return insert(stream, model, static_cast<long>(number),
                      std::to_string(static_cast<long>(number)));
    case 5:
        return insert(stream, model, static_cast<unsigned long>(number),
                      std::to_string(static_cast<unsigned long>(number)));
    case 6:
        return insert(stream, model, number, std::to_string(number));
    case 7:
        return insert(stream, model, bits, std::to_string(bits));
    case 8:
        return insert(stream, model, std::bit_cast<double>(bits),
                      textOfDouble(std::bit_cast<double>(bits)));
    case 9:
    {
        const auto single = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        return insert(stream, model, single, textOfDouble(static_cast<double>(single)));
    }
    default:
    {
        const void* const pointer =
            reinterpret_cast<const void*>(static_cast<std::uintptr_t>(bits));
        return insert(stream, model, pointer, printed("%p", pointer));
    }
    }
}

void checkState(const Stream& stream, const StreamModel& model)
{
    FUZZ_REQUIRE(stream.getNumCharacters() == model.room());
    FUZZ_REQUIRE(stream.isFull() == (model.room() == 0));
    FUZZ_REQUIRE(stream.getNextSize() == model.nextSize());
    FUZZ_REQUIRE(stream.hasOverflowed() == model.hasOverflowed());
    FUZZ_REQUIRE(stream.getOutputFlags() ==
                 (model.isInserted() ? 1U : 0U) + (model.isClosed() ? 2U : 0U));
}

void take(Stream& stream, StreamModel& model)
{
    const std::string expected = model.take();
    // Exactly the size of the text: the stream must not write beyond it.
    const std::unique_ptr<char[]> text(new char[expected.size() + 1]);
    FUZZ_REQUIRE(stream.take(text.get()) == expected.size());
    FUZZ_REQUIRE(text.get() == expected);
}

void act(fuzz::Input& input, Stream& stream, StreamModel& model)
{
    const std::uint8_t action = input.takeByte();
    switch (action % 8)
    {
    case 0:
        return take(stream, model);
    case 1:
        stream << Zu::ends;
        return model.finish();
    case 2:
        stream.resetOutputFlags();
        return model.resetFlags();
    case 3:
    {
        const char character = static_cast<char>(input.takeByte());
        const std::string text = character == '\0' ? "" : std::string(1, character);
        if (action < 128) return insert(stream, model, character, text);
        return insert(stream, model, static_cast<signed char>(character), text);
    }
    case 4:
        return insertNumber(stream, model, action / 8 % 11, input.takeNumber());
    case 5:
        return insert(stream, model, action >= 128, action >= 128 ? "true" : "false");
    case 6:
    {
        // A length that small inputs can't spell out.
        const std::string text(std::size_t{input.takeByte()} * (action / 8), 'x');
        return insert(stream, model, std::string_view(text), text);
    }
    default:
    {
        const std::string text = input.takeLine();
        const auto copy = fuzz::exactCopy(text);
        if (action < 128) return insert(stream, model, copy.get(), text);
        return insert(stream, model, std::string_view(copy.get(), text.size() + 1), text);
    }
    }
}

void run(fuzz::Input input)
{
    constexpr std::uint32_t sizes[] = {4, 8, 16, 32, 64, 256, 1024, 32768};
    const std::uint32_t size = sizes[input.takeByte() % 8];
    Stream stream(size);
    StreamModel model(size);
    checkState(stream, model);
    while (!input.isEmpty())
    {
        act(input, stream, model);
        checkState(stream, model);
    }
    while (model.hasNext()) take(stream, model);
    FUZZ_REQUIRE(stream.getNextSize() == 0);
}

} // namespace

FUZZ_TARGET(logStream, run);
