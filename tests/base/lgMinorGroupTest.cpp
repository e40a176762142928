#include "base/lgMinorGroup.h"

#include "base/exInternalError.h"
#include "base/lgStream.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace
{

using Zu::LgMajorGroup;
using Zu::LgMinorGroup;
using Zu::LgStream;
namespace LgTypes = Zu::LgTypes;

// A ring so small that names are often cut, or begin at its end.
class SmallStream : public LgStream
{
public:
    explicit SmallStream(std::uint32_t size) : LgStream(size) {}
};

std::string take(LgStream& stream)
{
    std::array<char, LgStream::BufSize> text;
    stream >> text.data();
    return text.data();
}

TEST(LgMinorGroup, AsksItsMajorGroupEachTime)
{
    LgMajorGroup major;
    const LgMinorGroup minor(major, "UI");
    for (int threshold = 0; threshold < LgTypes::NUM_LEVELS; ++threshold)
    {
        major.setLogThreshold(static_cast<LgTypes::Level>(threshold), true);
        for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
        {
            // The last threshold adds Profiling to Tracing, which stood before it.
            const bool isProfiling = level == LgTypes::Profiling;
            const bool expected = isProfiling ? threshold == LgTypes::Profiling
                                              : level <= threshold || level <= LgTypes::FatalError;
            EXPECT_EQ(minor.isLevelEnabled(static_cast<LgTypes::Level>(level)), expected)
                << threshold << level;
        }
    }
}

TEST(LgMinorGroup, KeepsItsNameAsAPointer)
{
    const LgMajorGroup major;
    const char* const name = "UI";
    EXPECT_EQ(LgMinorGroup(major, name).getName(), name);
}

TEST(LgMinorGroup, NeedsAName)
{
    const LgMajorGroup major;
    try
    {
        const LgMinorGroup minor(major, nullptr);
        FAIL();
    }
    catch (const Zu::ExInternalError& exception)
    {
        EXPECT_STREQ(exception.getReason(), "Assertion 'n' failed.");
    }
}

TEST(LgMinorGroup, InsertsItsNameAndABlankWhateverTheirLength)
{
    const LgMajorGroup major;
    for (std::size_t length = 0; length < 70; ++length)
    {
        const std::string name(length, 'n');
        const LgMinorGroup minor(major, name.c_str());
        LgStream stream;
        minor.insertName(stream);
        EXPECT_EQ(stream.getOutputFlags(), 1U);
        stream << "message" << Zu::ends;
        minor.insertName(stream);
        stream << Zu::ends;
        EXPECT_EQ(take(stream), name + " message");
        EXPECT_EQ(take(stream), name + ' ');
        EXPECT_EQ(take(stream), "");
    }
}

TEST(LgMinorGroup, InsertsItsNameAsTwoPiecesWhereverTheRingEnds)
{
    const LgMajorGroup major;
    std::size_t cut = 0;
    for (const std::uint32_t size : {64U, 128U, 256U})
    {
        SmallStream stream(size);
        SmallStream pieces(size);
        std::size_t waiting = 0;
        for (std::size_t i = 0; i < 20000; ++i)
        {
            const std::string name(i * 7 % 41, static_cast<char>('a' + i % 26));
            LgMinorGroup(major, name.c_str()).insertName(stream);
            pieces << name << ' ';
            // One of three texts goes on behind the name.
            if (i % 3 == 0)
            {
                stream << "text";
                pieces << "text";
            }
            ASSERT_EQ(stream.getOutputFlags(), pieces.getOutputFlags());
            ASSERT_EQ(stream.getNumCharacters(), pieces.getNumCharacters());
            ASSERT_EQ(stream.hasOverflowed(), pieces.hasOverflowed());
            cut += stream.hasOverflowed() ? 1 : 0;
            stream << Zu::ends;
            pieces << Zu::ends;
            stream.resetOutputFlags();
            pieces.resetOutputFlags();
            // Sometimes the reader takes two, sometimes none.
            for (waiting += 1; waiting > i % 5; --waiting) ASSERT_EQ(take(stream), take(pieces));
        }
    }
    EXPECT_GT(cut, 0U);
}

TEST(LgMinorGroup, ACopyInsertsTheSameName)
{
    const LgMajorGroup major;
    LgMinorGroup minor(major, "first");
    minor = LgMinorGroup(major, "second");
    LgStream stream;
    minor.insertName(stream);
    stream << Zu::ends;
    EXPECT_EQ(take(stream), "second ");
}

} // namespace
