#include "base/exSysError.h"
#include "base/exSystemCode.h"

#include "support/rowName.h"

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>

namespace
{

struct LineEndRow
{
    const char* _name;
    std::string _text;
    std::string _cut;
};

class CutLineEnd : public testing::TestWithParam<LineEndRow>
{
};

TEST_P(CutLineEnd, TheLastTwoCharactersAreLookedAtIndependently)
{
    // An array of just this size, so that a look outside of it is seen.
    const LineEndRow& row = GetParam();
    const std::unique_ptr<char[]> text(new char[row._text.size() + 1]);
    std::memcpy(text.get(), row._text.c_str(), row._text.size() + 1);
    Zu::cutLineEnd(text.get());
    EXPECT_EQ(text.get(), row._cut);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CutLineEnd,
    testing::Values(LineEndRow{"Empty", "", ""}, LineEndRow{"OneCharacter", "a", "a"},
                    LineEndRow{"TwoCharacters", "ab", "ab"},
                    LineEndRow{"NoLineEnd", "Access denied.", "Access denied."},
                    LineEndRow{"OneLineFeed", "Access denied.\n", "Access denied."},
                    LineEndRow{"OneCarriageReturn", "Access denied.\r", "Access denied."},
                    LineEndRow{"Both", "Access denied.\r\n", "Access denied."},
                    LineEndRow{"BothTheOtherWay", "Access denied.\n\r", "Access denied."},
                    LineEndRow{"TwoLineFeeds", "Access denied.\n\n", "Access denied."},
                    LineEndRow{"ThreeLineFeeds", "Access denied.\n\n\n", "Access denied.\n"},
                    LineEndRow{"TwoFullLineEnds", "line\r\n\r\n", "line\r\n"},
                    LineEndRow{"LineFeedAlone", "\n", ""},
                    LineEndRow{"CarriageReturnAlone", "\r", ""},
                    LineEndRow{"LineEndAlone", "\r\n", ""},
                    LineEndRow{"OneCharacterAndLineFeed", "a\n", "a"},
                    // The last character stays but is cut off with the one before it.
                    LineEndRow{"LineFeedBeforeTheLast", "a\nb", "a"},
                    LineEndRow{"CarriageReturnBeforeTheLast", "text\rb", "text"},
                    LineEndRow{"LineFeedFirstOfTwo", "\nb", ""},
                    LineEndRow{"LineFeedFurtherIn", "a\nbc", "a\nbc"},
                    LineEndRow{"BlankBeforeTheLineEnd", "text \r\n", "text "}),
    support::RowName());

TEST(ExSysErrorWindows, CarriesTheLastSystemErrorAndItsTextWithoutTheLineEnd)
{
    // The code 2 is a missing file on every platform; the text differs.
    const std::set<std::string> texts{"No such file or directory",
                                      "The system cannot find the file specified.",
                                      "File not found."};
    Zu::setLastSystemCode(2);
    const Zu::ExSysErrorWindows error("dir/file.cpp", 31);
    EXPECT_EQ(error.getErrorCode(), 2);
    EXPECT_EQ(texts.count(error.getReason()), 1U) << error.getReason();
    EXPECT_STREQ(error.what(), error.getReason());
    EXPECT_STREQ(error.getFileName(), "dir/file.cpp");
    EXPECT_EQ(error.getLineNo(), 31);
}

TEST(ExSysErrorWindows, TheCodeStaysWhenTheLastErrorChanges)
{
    Zu::setLastSystemCode(5);
    const Zu::ExSysErrorWindows error("dir/file.cpp", 31);
    const std::string reason = error.getReason();
    Zu::setLastSystemCode(2);
    const std::unique_ptr<Zu::ExBase> copy(error.clone());
    EXPECT_EQ(error.getErrorCode(), 5);
    EXPECT_EQ(dynamic_cast<Zu::ExSysErrorWindows&>(*copy).getErrorCode(), 5);
    EXPECT_EQ(copy->getReason(), reason);
    EXPECT_STREQ(error.what(), reason.c_str());
}

TEST(ExSysErrorWindows, ACodeThatThePlatformDoesNotKnowIsCarriedAndToldTheSame)
{
    Zu::setLastSystemCode(0x2abcdef);
    const Zu::ExSysErrorWindows error("a.cpp", 1);
    EXPECT_EQ(error.getErrorCode(), 0x2abcdef);
    EXPECT_STREQ(error.getReason(), "Unknown error 44813807");
    EXPECT_STREQ(error.what(), "Unknown error 44813807");
}

TEST(SystemCode, TheTextFitsTheBufferThatItIsGiven)
{
    for (const std::size_t size : {1U, 2U, 5U, 1024U})
    {
        const std::unique_ptr<char[]> text(new char[size]);
        std::memset(text.get(), 'x', size);
        Zu::systemCodeText(2, text.get(), size);
        EXPECT_LT(std::string(text.get(), size).find('\0'), size);
    }
}

} // namespace
