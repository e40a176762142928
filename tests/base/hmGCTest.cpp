#include "base/hmGC.h"

#include "support/privateMember.h"
#include "support/traceTest.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sstream>
#include <type_traits>

namespace
{

using Zu::HmGC;

template <class T>
concept Deletable = requires(T* object)
{
    delete object;
};

struct Plain
{
};

// An object of the class is never released from the heap itself; it may be part of one that is.
static_assert(Deletable<Plain>);
static_assert(!Deletable<HmGC>);

struct Whole
{
    HmGC _checker;
};
static_assert(Deletable<Whole>);

// Its end may raise.
static_assert(std::is_destructible_v<HmGC>);
static_assert(!std::is_nothrow_destructible_v<HmGC>);
static_assert(std::is_copy_assignable_v<HmGC>);

TEST(HmGC, TellsThatThereIsNoDebuggingHeap)
{
    EXPECT_FALSE(HmGC::isMemDebugLoaded());
}

TEST(HmGC, FindsNothingWithoutADebuggingHeap)
{
    std::ostringstream output;
    const std::string printed = support::coutOf(
        [&output]
        {
            int block = 0;
            EXPECT_NO_THROW({
                HmGC checker;
                checker.setOutput(&output);
                checker.setThrowException(true);
                checker.setStackDump(true);
                checker.validateAndPrint(&block);
                checker.validateAndPrint(nullptr);
            });
        });
    EXPECT_EQ(output.str(), "");
    EXPECT_EQ(printed, "");
}

TEST(HmGC, WorksWithoutAnySetting)
{
    int block = 0;
    EXPECT_NO_THROW({
        HmGC checker;
        checker.validateAndPrint(&block);
    });
}

// Under the address sanitizer this also shows that an object without settings can be copied.
TEST(HmGC, SettingsAreCopied)
{
    std::ostringstream output;
    int block = 0;
    EXPECT_NO_THROW({
        HmGC source;
        HmGC target;
        target = source;
        source.setOutput(&output);
        source.setThrowException(true);
        source.setStackDump(true);
        target = source;
        HmGC copy(target);
        copy.validateAndPrint(&block);
    });
    EXPECT_EQ(output.str(), "");
}

TEST(HmGC, IsPartOfAnObjectOnTheHeap)
{
    EXPECT_NO_THROW(delete new Whole);
}

} // namespace

namespace support
{

struct IsLeakValid
{
    using Member = bool (Zu::HmGC::*)(Zu::ArrayPtr<char>*, const char*) const;
    friend Member memberOf(IsLeakValid);
};

template struct PrivateMember<IsLeakValid, &Zu::HmGC::isLeakValid>;

} // namespace support

namespace
{

Zu::ArrayPtr<char> nameOf(const char* text)
{
    Zu::ArrayPtr<char> name(new char[std::strlen(text) + 1]);
    std::strcpy(name.get(), text);
    return name;
}

TEST(HmGC, ALeakIsValidUnlessAnEntryOfTheKnownOnesMatchesItsStack)
{
    const struct
    {
        const char* _second;
        const char* _knownLeaks;
        bool _isValid;
    } rows[] = {
        {"bar", "", true},
        {"bar", "KNOWNLEAK foo bar ENDL", false},
        {"baz", "KNOWNLEAK foo bar ENDL", true},
        {"bar", "KNOWNLEAK foobar bar ENDL", false},
        {"baz", "KNOWNLEAK foo bar ENDL KNOWNLEAK foo baz ENDL", false},
    };
    const HmGC checker;
    for (const auto& row : rows)
    {
        Zu::ArrayPtr<char> stack[] = {nameOf("foo"), nameOf(row._second), Zu::ArrayPtr<char>()};
        EXPECT_EQ((checker.*memberOf(support::IsLeakValid()))(stack, row._knownLeaks), row._isValid)
            << row._second << ": " << row._knownLeaks;
    }
}

} // namespace
