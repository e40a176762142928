#include "base/inVariableBase.h"

#include "base/inEx.h"
#include "base/inPackageInit.h"
#include "base/inVariable.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace
{

using Zu::InArgAlias;
using Zu::InDefAlias;
using Zu::InEnvAlias;
using Zu::InEx;
using Zu::InVariable;
using Zu::InVariableBase;

// Records the variables that joined.
class ListingPackage : public Zu::InPackageInitBase
{
public:
    void addDependency(InVariableBase* variable) override
    {
        _variables.push_back(variable);
    }
    void removeDependency(InVariableBase* variable) override
    {
        _variables.erase(std::find(_variables.begin(), _variables.end(), variable));
    }

    std::vector<InVariableBase*> _variables;
};

// An alias that can't be copied any more, as every alias after its kind took its values.
class ClosedAlias : public Zu::InContextAliasBase
{
public:
    ClosedAlias() : InContextAliasBase("closed") {}

    InContextAliasBase* clone() const override
    {
        throw InEx::ExNoNewContextAliasAfterInit("", 0, "closed", "key");
    }
    std::uint32_t getPriority() const override
    {
        return 0;
    }
    const char* getKey() const override
    {
        return "key";
    }
};

using Texts = std::vector<std::string>;

Texts keysOf(const InVariableBase& variable)
{
    Texts keys;
    variable.visitAliases([&](const Zu::InContextAliasBase& alias)
                          { keys.emplace_back(alias.getKey()); });
    return keys;
}

TEST(InVariableBase, IsVisitedWithItsAliases)
{
    ListingPackage package;
    const InDefAlias usual("7", "usual");
    const InEnvAlias environment("IN_VARIABLE_VISITED", "environment");
    const InArgAlias option("v:", "option");
    const InVariable<int> second("visited::b", package, usual, option, environment);
    const InVariable<int> first("visited::a", package, usual);
    const InVariable<int> none("visited::c", package, InVariableBase::_dummy);
    Texts handles;
    InVariableBase::visitAll(
        [&](const InVariableBase& variable)
        {
            if (std::string(variable.getHandle()).rfind("visited::", 0) == 0)
                handles.emplace_back(variable.getHandle());
        });
    EXPECT_EQ(handles, (Texts{"visited::a", "visited::b", "visited::c"}));
    EXPECT_EQ(keysOf(first), Texts{"7"});
    EXPECT_EQ(keysOf(second), (Texts{"v:", "IN_VARIABLE_VISITED", "7"}));
    EXPECT_EQ(keysOf(none), Texts{});
}

// Has a value for each variable whose handle begins so.
class OneSource : public Zu::InValueSource
{
public:
    explicit OneSource(const char* value) : _value(value), _before(InVariableBase::setSource(this))
    {
    }
    ~OneSource() override
    {
        InVariableBase::setSource(_before);
    }
    const char* find(const InVariableBase& variable) override
    {
        _asked.emplace_back(variable.getHandle());
        return _value;
    }
    const char* getDescription() const override
    {
        return "one source";
    }

    Texts _asked;

private:
    const char* _value;
    InValueSource* _before;
};

// An alias that has its value already.
class ReadyAlias : public Zu::InContextAliasBase
{
public:
    ReadyAlias(std::uint32_t priority, const char* value)
        : InContextAliasBase("ready"), _priority(priority), _value(value)
    {
        if (value) initialize(value);
    }
    InContextAliasBase* clone() const override
    {
        return new ReadyAlias(_priority, _value);
    }
    std::uint32_t getPriority() const override
    {
        return _priority;
    }
    const char* getKey() const override
    {
        return "ready";
    }

private:
    std::uint32_t _priority;
    const char* _value;
};

TEST(InVariableBase, AsksTheSourceBehindTheEnvironmentAndBeforeDefaults)
{
    const struct
    {
        std::uint32_t _priority;
        const char* _own;
        const char* _ofSource;
        int _value;
        bool _isAsked;
    } cases[] = {
        {0, "1", "2", 2, true},   {0, "1", nullptr, 1, true},  {10, "1", "2", 1, false},
        {15, "1", "2", 1, false}, {10, nullptr, "2", 2, true},
    };
    for (const auto& row : cases)
    {
        ListingPackage package;
        const ReadyAlias own(row._priority, row._own);
        InVariable<int> variable("sourced", package, own);
        OneSource source(row._ofSource);
        variable.initialize();
        EXPECT_EQ(variable.getValue(), row._value);
        EXPECT_EQ(source._asked, row._isAsked ? Texts{"sourced"} : Texts{});
        if (row._value == 2)
        {
            EXPECT_STREQ(variable.contextAlias()->getDescription(), "one source");
            EXPECT_STREQ(variable.contextAlias()->getKey(), "sourced");
            EXPECT_EQ(variable.contextAlias()->getPriority(), 5U);
        }
        variable.finalize();
    }
}

TEST(InVariableBase, AVariableWithoutAliasesMayHaveItsValueFromASource)
{
    ListingPackage package;
    InVariable<const char*> variable("sourced", package, InVariableBase::_dummy);
    {
        const OneSource none(nullptr);
        variable.initialize();
        EXPECT_FALSE(variable.isValid());
        variable.finalize();
        {
            const OneSource source("text");
            variable.initialize();
            EXPECT_STREQ(variable.getValue(), "text");
            variable.finalize();
        }
    }
    EXPECT_EQ(InVariableBase::setSource(nullptr), nullptr) << "each has put back the one before";
}

TEST(InContextAliasMgr, VisitsTheAliasesOfItsKind)
{
    const auto options = []
    {
        std::multiset<std::string> keys;
        Zu::InContextAliasMgr<InArgAlias>::visitAll([&](const Zu::InContextAliasBase& alias)
                                                    { keys.insert(alias.getKey()); });
        return keys;
    };
    const auto before = options();
    EXPECT_EQ(before.count("q:"), 0U);
    const InArgAlias option("q:", "option");
    const InEnvAlias environment("q:", "not an option");
    EXPECT_EQ(options().count("q:"), 1U);
    ListingPackage package;
    const InVariable<int> variable("visited::q", package, option);
    EXPECT_EQ(options().count("q:"), 2U) << "with the variable's clone";
}

TEST(InVariableBase, JoinsItsPackageAndIsFoundByItsHandle)
{
    ListingPackage package;
    {
        const InVariable<int> variable("test::joins", package, InVariableBase::_dummy);
        EXPECT_EQ(package._variables,
                  std::vector<InVariableBase*>(1, const_cast<InVariable<int>*>(&variable)));
        EXPECT_EQ(InVariableBase::queryViaHandle("test::joins"), &variable);
        EXPECT_STREQ(variable.getHandle(), "test::joins");
        EXPECT_EQ(InVariableBase::queryViaHandle("test::join"), nullptr);
    }
    EXPECT_TRUE(package._variables.empty());
    EXPECT_EQ(InVariableBase::queryViaHandle("test::joins"), nullptr);
    EXPECT_EQ(InVariableBase::queryViaHandle(nullptr), nullptr);
}

TEST(InVariableBase, TheLibrarysOwnVariablesAreThere)
{
    for (const char* const handle : {"Zu::Corvane::debugging::buildInfoNoValidate",
                                     "Zu::Corvane::debugging::buildInfoCheckStamps"})
        EXPECT_NE(dynamic_cast<InVariable<int>*>(InVariableBase::queryViaHandle(handle)), nullptr)
            << handle;
}

TEST(InVariableBase, AHandleInUseIsRefusedAndTheFirstStays)
{
    ListingPackage package;
    const InVariable<int> first("test::twice", package, InVariableBase::_dummy);
    try
    {
        const InVariable<bool> second("test::twice", package, InVariableBase::_dummy);
        FAIL();
    }
    catch (const InEx::ExHandleAlreadyInUse& exception)
    {
        EXPECT_STREQ(exception.getReason(),
                     "Trying to register an object with an already used handle: 'test::twice'.");
    }
    EXPECT_EQ(InVariableBase::queryViaHandle("test::twice"), &first);
    EXPECT_EQ(package._variables.size(), 1U);
}

TEST(InVariableBase, AnAliasThatCantBeClonedLeavesNothingBehind)
{
    ListingPackage package;
    const InEnvAlias good("TEST_GOOD", "");
    const ClosedAlias closed;
    EXPECT_THROW(InVariable<int>("test::closed", package, good, closed),
                 InEx::ExNoNewContextAliasAfterInit);
    EXPECT_TRUE(package._variables.empty());
    EXPECT_EQ(InVariableBase::queryViaHandle("test::closed"), nullptr);
}

TEST(InVariableBase, TheAliasOfTheHighestPriorityThatHasAValueWins)
{
    // Whether argument, environment and default have a value, and which one wins.
    for (unsigned int has = 0; has < 8; ++has)
    {
        ListingPackage package;
        InDefAlias defaultAlias("d", "");
        InArgAlias argument("a:", "");
        InEnvAlias environment("TEST_ENVIRONMENT", "");
        defaultAlias.initialize(has & 1 ? "from default" : nullptr);
        environment.initialize(has & 2 ? "from environment" : nullptr);
        argument.initialize(has & 4 ? "from argument" : nullptr);
        InVariable<const char*> variable("test::priority", package, defaultAlias, argument,
                                         environment);
        variable.initialize();
        ASSERT_EQ(variable.isValid(), has != 0);
        if (has == 0) continue;
        const bool byArgument = has & 4;
        const bool byEnvironment = !byArgument && has & 2;
        EXPECT_STREQ(variable.getValue(), byArgument      ? "from argument"
                                          : byEnvironment ? "from environment"
                                                          : "from default");
        EXPECT_STREQ(variable.initSource(), byArgument ? "Zu::InContextAlias<Zu::InInitArg, 1>"
                                            : byEnvironment
                                                ? "Zu::InContextAlias<Zu::InInitEnv, 1>"
                                                : "Zu::InContextAlias<Zu::InInitDef, 0>");
    }
}

TEST(InVariableBase, AmongEqualPrioritiesTheFirstGivenWins)
{
    ListingPackage package;
    InDefAlias first("d", "");
    InDefAlias second("d", "");
    InDefAlias third("d", "");
    first.initialize(nullptr);
    second.initialize("second");
    third.initialize("third");
    InVariable<const char*> variable("test::equal", package, first, second, third);
    variable.initialize();
    EXPECT_STREQ(variable.getValue(), "second");
}

TEST(InVariableBase, TakesTenAliases)
{
    ListingPackage package;
    std::vector<std::unique_ptr<InDefAlias>> a;
    for (int i = 0; i < 10; ++i)
    {
        a.push_back(std::make_unique<InDefAlias>("d", ""));
        a.back()->initialize(i == 9 ? "tenth" : nullptr);
    }
    InVariable<const char*> variable("test::ten", package, *a[0], *a[1], *a[2], *a[3], *a[4], *a[5],
                                     *a[6], *a[7], *a[8], *a[9]);
    variable.initialize();
    EXPECT_STREQ(variable.getValue(), "tenth");
}

TEST(InVariableBase, WithoutAliasesItStaysUninitialised)
{
    ListingPackage package;
    InVariable<int> variable("test::none", package, InVariableBase::_dummy);
    variable.initialize();
    EXPECT_FALSE(variable.isValid());
    EXPECT_EQ(variable.contextAlias(), nullptr);
    EXPECT_THROW(variable.getValue(), InEx::ExUninitializedObject);
    EXPECT_THROW(variable.initSource(), InEx::ExUninitializedObject);
}

TEST(InVariableBase, FinalisedItHasNoValueAndCanTakeOneAgain)
{
    ListingPackage package;
    InDefAlias alias("d", "");
    alias.initialize("5");
    InVariable<int> variable("test::again", package, alias);
    EXPECT_FALSE(variable.isValid());
    variable.initialize();
    EXPECT_EQ(variable.getValue(), 5);
    variable.finalize();
    EXPECT_FALSE(variable.isValid());
    variable.initialize();
    EXPECT_EQ(variable.getValue(), 5);
}

TEST(InVariableBase, AnOverrideWaitsForItsVariable)
{
    ListingPackage package;
    EXPECT_FALSE(InVariableBase::isOverridden("test::override"));
    InVariableBase::overrideViaHandle("test::override", "1", "first");
    InVariableBase::overrideViaHandle("test::override", "2", "last");
    EXPECT_TRUE(InVariableBase::isOverridden("test::override"));
    EXPECT_FALSE(InVariableBase::isOverridden("test::overrid"));
    EXPECT_FALSE(InVariableBase::isOverridden(nullptr));
    InVariable<int> variable("test::override", package, InVariableBase::_dummy);
    variable.initialize();
    EXPECT_FALSE(InVariableBase::isOverridden("test::override"));
}

TEST(InVariableBase, AVariableThatHasItsValueCantBeOverridden)
{
    ListingPackage package;
    InDefAlias alias("d", "");
    alias.initialize("5");
    InVariable<int> variable("test::late", package, alias);
    variable.initialize();
    try
    {
        InVariableBase::overrideViaHandle("test::late", "6", "too late");
        FAIL();
    }
    catch (const InEx::ExVariableAlreadyInitialized& exception)
    {
        EXPECT_STREQ(exception.getReason(),
                     "Trying to override an InVariable that is already initialized: 'test::late'.");
    }
    EXPECT_FALSE(InVariableBase::isOverridden("test::late"));
    EXPECT_EQ(variable.getValue(), 5);
}

TEST(InVariableBaseDeathTest, ASecondInitialisationIsFatal)
{
    ListingPackage package;
    InDefAlias alias("d", "");
    alias.initialize("5");
    InVariable<int> variable("test::death", package, alias);
    variable.initialize();
    EXPECT_DEATH(variable.initialize(), "Assertion failed: _contextAlias == 0, file");
}

TEST(InVariableBaseDeathTest, TheDummyIsNotToBeUsed)
{
    const Zu::InContextAliasBase& dummy = InVariableBase::_dummy;
    EXPECT_STREQ(dummy.getDescription(), "InVariableBase::_dummy");
    EXPECT_DEATH(dummy.clone(), "_dummy is not cloned");
    EXPECT_DEATH(dummy.getPriority(), "_dummy has no priority");
    EXPECT_DEATH(dummy.getKey(), "_dummy has no key");
}

} // namespace
