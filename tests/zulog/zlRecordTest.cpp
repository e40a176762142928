#include "zulog/zlRecord.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using Kind = Zu::ZlRecord::Kind;

TEST(ZlRecord, HasANameForEachKind)
{
    const struct
    {
        Kind _kind;
        const char* _name;
        bool _isEvent;
    } rows[] = {
        {Kind::Event, "event", true},
        {Kind::Overflow, "overflow", true},
        {Kind::Start, "start", false},
        {Kind::Stop, "stop", false},
        {Kind::RecoveryBegin, "recovery-begin", false},
        {Kind::RecoveryEnd, "recovery-end", false},
        {Kind::NotWritten, "not-written", false},
        {Kind::Unreadable, "unreadable", false},
    };
    for (const auto& row : rows)
    {
        EXPECT_STREQ(Zu::zlKindName(row._kind), row._name);
        EXPECT_EQ(Zu::zlIsEvent(row._kind), row._isEvent) << row._name;
    }
}

} // namespace
