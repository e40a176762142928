#include "base/exBase.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace exBaseTest
{

// The smallest exception there can be; its reason may grow.
class Plain : public Zu::ExBase
{
public:
    using ExBase::ExBase;
    using ExBase::setReason;

    ExBase* clone() const override
    {
        return new Plain(*this);
    }
};

// Its name grows with the type that it is made for.
template <class T> class Named : public Zu::ExBase
{
public:
    using ExBase::ExBase;

    ExBase* clone() const override
    {
        return new Named(*this);
    }
};

} // namespace exBaseTest

namespace
{

using exBaseTest::Named;
using exBaseTest::Plain;

// Characters of which no two neighbours are equal, so that a shifted text is another text.
std::string textOf(std::size_t length)
{
    std::string text;
    for (std::size_t i = 0; i < length; ++i) text += static_cast<char>('a' + i % 23);
    return text;
}

// What precedes the reason in the detailed reason of plain("file.cpp", 12).
const std::string BRACKET = "[Exception Type = exBaseTest::Plain, File = file.cpp, Line=12]\n";

TEST(ExBase, SaysWhereItWasRaised)
{
    const Plain exception("dir/file.cpp", 77);
    EXPECT_STREQ(exception.getFileName(), "dir/file.cpp");
    EXPECT_EQ(exception.getLineNo(), 77);
    EXPECT_STREQ(exception.getReason(), "");
    EXPECT_EQ(Plain("file.cpp", -1).getLineNo(), -1);
}

TEST(ExBase, ANullFileLeavesTheNameEmpty)
{
    const Plain exception(nullptr, 1);
    EXPECT_STREQ(exception.getFileName(), "");
    EXPECT_STREQ(exception.getDetailedReason(),
                 "[Exception Type = exBaseTest::Plain, File = , Line=1]\n");
}

TEST(ExBase, AFileNameKeepsItsFirst127Characters)
{
    for (const std::size_t length : {1, 126, 127, 128, 129, 200, 2000})
        EXPECT_EQ(Plain(textOf(length).c_str(), 1).getFileName(), textOf(length).substr(0, 127));
}

TEST(ExBase, AReasonKeepsItsFirst1023Characters)
{
    for (const std::size_t length : {1, 1022, 1023, 1024, 1025, 2000})
    {
        Plain exception("file.cpp", 1);
        exception.setReason(textOf(length).c_str());
        EXPECT_EQ(exception.getReason(), textOf(length).substr(0, 1023));
        EXPECT_STREQ(exception.getFileName(), "file.cpp");
        EXPECT_EQ(exception.getLineNo(), 1);
    }
}

TEST(ExBase, AFurtherReasonIsAppended)
{
    Plain exception("file.cpp", 1);
    exception.setReason("One");
    exception.setReason(", two");
    exception.setReason("");
    exception.setReason(", three.");
    EXPECT_STREQ(exception.getReason(), "One, two, three.");
}

TEST(ExBase, AnAppendedReasonIsCutAtTheSameLength)
{
    const std::string whole = textOf(3000);
    for (const std::size_t first : {1, 500, 1021, 1022, 1023})
        for (const std::size_t second : {1, 2, 3, 523, 524, 1023, 1500})
        {
            Plain exception("file.cpp", 1);
            exception.setReason(whole.substr(0, first).c_str());
            exception.setReason(whole.substr(first, second).c_str());
            EXPECT_EQ(exception.getReason(),
                      whole.substr(0, std::min<std::size_t>(first + second, 1023)));
        }
}

TEST(ExBase, ANullReasonChangesNothing)
{
    Plain exception("file.cpp", 1);
    exception.setReason(nullptr);
    EXPECT_STREQ(exception.getReason(), "");
    exception.setReason("text");
    exception.setReason(nullptr);
    EXPECT_STREQ(exception.getReason(), "text");
}

TEST(ExBase, TheDetailedReasonNamesTypeFileAndLineBeforeTheReason)
{
    Plain exception("file.cpp", 12);
    exception.setReason("It failed.");
    EXPECT_EQ(exception.getDetailedReason(), BRACKET + "It failed.");
}

TEST(ExBase, TheDetailedReasonWithoutAReasonIsTheBracketLineAlone)
{
    EXPECT_EQ(Plain("file.cpp", 12).getDetailedReason(), BRACKET);
    EXPECT_EQ(BRACKET.back(), '\n');
}

TEST(ExBase, TheDetailedReasonIsCutTo1023CharactersAsAWhole)
{
    const std::size_t room = 1023 - BRACKET.size();
    for (const std::size_t length : {room - 1, room, room + 1, std::size_t(1023)})
    {
        Plain exception("file.cpp", 12);
        exception.setReason(textOf(length).c_str());
        EXPECT_EQ(exception.getDetailedReason(), (BRACKET + textOf(length)).substr(0, 1023));
        EXPECT_EQ(exception.getReason(), textOf(length));
    }
}

TEST(ExBase, ATypeNameBeyondTheBufferIsCutToo)
{
    using Two = Named<Named<int>>;
    using Eight = Named<Named<Named<Named<Named<Named<Two>>>>>>;
    using Sixteen = Named<Named<Named<Named<Named<Named<Named<Named<Eight>>>>>>>>;
    using Many = Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<
        Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<
            Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<Named<
                Named<Named<Named<Named<Named<Sixteen>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>;
    const Many exception("file.cpp", 12);
    const std::string detailed = exception.getDetailedReason();
    EXPECT_EQ(detailed.size(), 1023U);
    EXPECT_EQ(detailed.rfind("[Exception Type = exBaseTest::Named<exBaseTest::Named<", 0), 0U);
    EXPECT_STREQ(exception.getFileName(), "file.cpp");
    EXPECT_STREQ(exception.getReason(), "");
}

TEST(ExBase, ADetailedReasonOnceMadeStays)
{
    Plain exception("file.cpp", 12);
    exception.setReason("First.");
    const char* const made = exception.getDetailedReason();
    exception.setReason(" Second.");
    EXPECT_EQ(exception.getDetailedReason(), made);
    EXPECT_EQ(exception.getDetailedReason(), BRACKET + "First.");
    EXPECT_STREQ(exception.getReason(), "First. Second.");
}

TEST(ExBase, ACopyTakesAMadeDetailedReasonWithIt)
{
    Plain original("file.cpp", 12);
    original.setReason("First.");
    original.getDetailedReason();
    Plain copy(original);
    copy.setReason(" Second.");
    EXPECT_STREQ(copy.getReason(), "First. Second.");
    EXPECT_EQ(copy.getDetailedReason(), BRACKET + "First.");
}

TEST(ExBase, ACopyWithoutADetailedReasonMakesItsOwn)
{
    Plain original("file.cpp", 12);
    original.setReason("First.");
    Plain copy(original);
    copy.setReason(" Second.");
    EXPECT_EQ(copy.getDetailedReason(), BRACKET + "First. Second.");
    EXPECT_EQ(original.getDetailedReason(), BRACKET + "First.");
}

TEST(ExBase, ACopyOutlivesTheOriginal)
{
    auto original = std::make_unique<Plain>(textOf(127).c_str(), 5);
    original->setReason(textOf(1023).c_str());
    const Plain copy(*original);
    original.reset();
    EXPECT_EQ(copy.getFileName(), textOf(127));
    EXPECT_EQ(copy.getLineNo(), 5);
    EXPECT_EQ(copy.getReason(), textOf(1023));
}

TEST(ExBase, AssignmentTakesAllFourFields)
{
    Plain source("source.cpp", 2);
    source.setReason("Reason.");
    source.getDetailedReason();
    source.setReason(" More.");

    Plain target("aMuchLongerNameOfAFile.cpp", 1);
    target.setReason("A reason that is longer than the other one.");
    target.getDetailedReason();
    Plain& result = target = source;

    EXPECT_EQ(&result, &target);
    EXPECT_STREQ(target.getFileName(), "source.cpp");
    EXPECT_EQ(target.getLineNo(), 2);
    EXPECT_STREQ(target.getReason(), "Reason. More.");
    EXPECT_STREQ(target.getDetailedReason(),
                 "[Exception Type = exBaseTest::Plain, File = source.cpp, Line=2]\nReason.");
}

TEST(ExBase, AssignmentOfAnObjectWithoutADetailedReasonDropsTheTargetsOwn)
{
    Plain source("file.cpp", 12);
    source.setReason("New.");
    Plain target("old.cpp", 1);
    target.getDetailedReason();
    target = source;
    EXPECT_EQ(target.getDetailedReason(), BRACKET + "New.");
}

TEST(ExBase, AssignmentToItselfChangesNothing)
{
    Plain exception("file.cpp", 12);
    exception.setReason("Reason.");
    exception.getDetailedReason();
    const Plain& same = exception;
    exception = same;
    EXPECT_STREQ(exception.getFileName(), "file.cpp");
    EXPECT_EQ(exception.getLineNo(), 12);
    EXPECT_STREQ(exception.getReason(), "Reason.");
    EXPECT_EQ(exception.getDetailedReason(), BRACKET + "Reason.");
}

TEST(ExBase, AllTextsStandInsideTheObject)
{
    Plain exception("file.cpp", 12);
    exception.setReason("Reason.");
    const char* const begin = reinterpret_cast<const char*>(&exception);
    const char* const end = begin + sizeof exception;
    for (const char* const text :
         {exception.getFileName(), exception.getReason(), exception.getDetailedReason()})
    {
        EXPECT_TRUE(std::less_equal<>()(begin, text));
        EXPECT_TRUE(std::less<>()(text, end));
    }
}

TEST(ExBase, ACloneIsOfTheDynamicTypeAndBelongsToTheCaller)
{
    Plain original("file.cpp", 12);
    original.setReason("Reason.");
    const Zu::ExBase& root = original;
    const std::unique_ptr<Zu::ExBase> copy(root.clone());
    EXPECT_NE(copy.get(), &root);
    EXPECT_TRUE(dynamic_cast<Plain*>(copy.get()));
    EXPECT_STREQ(copy->getReason(), "Reason.");
}

TEST(ExBase, IsNoStandardExceptionAndNothingOfItsOwn)
{
    EXPECT_FALSE((std::is_base_of_v<std::exception, Zu::ExBase>));
    EXPECT_TRUE(std::is_abstract_v<Zu::ExBase>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Zu::ExBase>);
}

} // namespace
