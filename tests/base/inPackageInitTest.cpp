#include "base/inPackageInit.h"

#include "base/inInit.h"
#include "base/inInitMgr.h"
#include "base/inVariable.h"

#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using Zu::InVariable;

class Sample : public Zu::InPackageInit
{
public:
    Sample() = default;
    explicit Sample(const char* name) : InPackageInit(name) {}

    using InPackageInit::addDependency;
    using InPackageInit::registerPackage;

    void performInitialize() override
    {
        _events.push_back("performInitialize");
        if (_throws) throw std::domain_error("body");
        _variableWasValid = _variable && _variable->isValid();
    }
    void performFinalize() override
    {
        _events.push_back("performFinalize");
        _variableWasValid = _variable && _variable->isValid();
    }
    void setInitialized(bool initialized) override
    {
        _events.push_back(initialized ? "up" : "down");
    }

    std::vector<std::string> _events;
    const Zu::InVariableBase* _variable = nullptr;
    bool _variableWasValid = false;
    bool _throws = false;
};

TEST(InPackageInit, NamesAreCutTo127Characters)
{
    EXPECT_STREQ(Sample().getName(), "unnamed");
    EXPECT_STREQ(Sample(nullptr).getName(), "");
    EXPECT_STREQ(Sample("").getName(), "");
    EXPECT_EQ(Sample(std::string(127, 'x').c_str()).getName(), std::string(127, 'x'));
    EXPECT_EQ(Sample(std::string(128, 'x').c_str()).getName(), std::string(127, 'x'));
    EXPECT_EQ(Sample(std::string(500, 'x').c_str()).getName(), std::string(127, 'x'));
}

TEST(InPackageInit, DependenciesKeepTheirOrderAndRepetitions)
{
    Sample package("sample");
    const std::type_info* const first = Zu::InInit<ZuInit::logger>::getType();
    const std::type_info* const second = Zu::InInit<ZuInit::osal>::getType();
    for (const std::type_info* type : {second, first, second}) package.addDependency(type);
    ASSERT_EQ(package.getDependencies().size(), 3U);
    EXPECT_TRUE(*package.getDependencies()[0] == *second);
    EXPECT_TRUE(*package.getDependencies()[1] == *first);
    EXPECT_TRUE(*package.getDependencies()[2] == *second);
}

TEST(InPackageInit, VariablesAreInitialisedBeforeTheBodyAndResetAfterIt)
{
    Sample package("sample");
    Zu::InDefAlias alias("d", "");
    alias.initialize("5");
    const InVariable<int> variable("test::package", package, alias);
    package._variable = &variable;
    package.initialize();
    EXPECT_TRUE(package._variableWasValid);
    EXPECT_EQ(package._events, (std::vector<std::string>{"performInitialize", "up"}));
    package.finalize();
    EXPECT_TRUE(package._variableWasValid);
    EXPECT_FALSE(variable.isValid());
    EXPECT_EQ(package._events,
              (std::vector<std::string>{"performInitialize", "up", "down", "performFinalize"}));
}

TEST(InPackageInit, ABodyThatThrowsLeavesThePackageDown)
{
    Sample package("sample");
    package._throws = true;
    EXPECT_THROW(package.initialize(), std::domain_error);
    EXPECT_EQ(package._events, (std::vector<std::string>{"performInitialize"}));
}

TEST(InPackageInitDeathTest, RemovingAVariableThatIsNotThereIsFatal)
{
    Sample package("sample");
    EXPECT_DEATH(package.removeDependency(nullptr), "Assertion failed: erased, file");
}

TEST(InInit, TheTypeIsThatOfThePackageObject)
{
    EXPECT_TRUE(*Zu::InInit<ZuInit::base>::getType() == typeid(Zu::InInit<ZuInit::base>));
    EXPECT_FALSE(*Zu::InInit<ZuInit::base>::getType() == *Zu::InInit<ZuInit::osal>::getType());
}

TEST(InPackageInit, AnObjectThatEndsIsForgottenByTheManager)
{
    const auto isWaiting = [](const std::string& name)
    {
        std::ostringstream dump;
        Zu::InInitMgr::getInstance().dump(dump);
        return dump.str().find("\t'" + name + "' Not initialized\n") != std::string::npos;
    };
    {
        Sample package("of a test");
        EXPECT_FALSE(isWaiting("of a test"));
        package.registerPackage();
        EXPECT_TRUE(isWaiting("of a test"));
    }
    EXPECT_FALSE(isWaiting("of a test"));
}

} // namespace
