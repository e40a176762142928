#include "zulog/zlText.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

TEST(ZlText, SeparatesLinesAndUndoesEscapesWhereAsked)
{
    const struct
    {
        const char* _text;
        const char* _plain;
        const char* _raw;
    } rows[] = {
        {"", "", ""},
        {"one\n\ttwo\n\t\tthree", "one\ntwo\n\tthree", "one\ntwo\n\tthree"},
        {"a\tb", "a\tb", "a\tb"},
        {"\\x1b \\\\x", "\\x1b \\\\x", "\x1b \\x"},
    };
    for (const auto& row : rows)
    {
        Zu::ZlRecord record;
        record._kind = Zu::ZlRecord::Kind::Event;
        record._text = row._text;
        EXPECT_EQ(Zu::zlTextOf(record, false), row._plain);
        EXPECT_EQ(Zu::zlTextOf(record, true), row._raw);
    }
}

TEST(ZlText, LeavesMarksAsTheyAre)
{
    Zu::ZlRecord record;
    record._kind = Zu::ZlRecord::Kind::Unreadable;
    record._text = "\\x41";
    EXPECT_EQ(Zu::zlTextOf(record, true), "\\x41");
}

} // namespace
