#include "app/apPackage.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

ZU_PACKAGE(apPackageTestFirst, "apPackageTestFirst");

namespace apPackageTest
{

ZU_DECLARE_PACKAGE(declared);

struct longForm;

} // namespace apPackageTest

namespace
{

using Zu::ApPackage;
using Zu::ApPart;

using Texts = std::vector<std::string>;

Texts steps;

class OwnPackage : public ApPackage
{
public:
    template <class... Clauses> explicit OwnPackage(Clauses... clauses) : ApPackage("own")
    {
        (take(clauses), ...);
    }
};

class OwnPart : public ApPart
{
public:
    explicit OwnPart(std::string name, bool fails = false) : _name(std::move(name)), _fails(fails)
    {
    }
    void start() override
    {
        if (_fails) throw std::runtime_error(_name);
        steps.push_back("+" + _name);
    }
    void stop() noexcept override
    {
        steps.push_back("-" + _name);
    }

private:
    std::string _name;
    bool _fails;
};

class ApPackageTest : public testing::Test
{
protected:
    ApPackageTest()
    {
        steps.clear();
    }
};

TEST_F(ApPackageTest, StartsItsPartsFirstAndStopsThemLast)
{
    OwnPackage package(Zu::atStart([] { steps.emplace_back("start"); }),
                       Zu::atStop([] { steps.emplace_back("stop"); }));
    OwnPart a("a");
    OwnPart b("b");
    OwnPart c("c");
    package.add(a);
    package.add(b);
    package.add(c);
    package.remove(b);
    package.remove(b);
    package.initialize();
    EXPECT_TRUE(package.isUp());
    EXPECT_EQ(steps, (Texts{"+a", "+c", "start"}));
    steps.clear();
    package.finalize();
    EXPECT_FALSE(package.isUp());
    EXPECT_EQ(steps, (Texts{"stop", "-c", "-a"}));
}

TEST_F(ApPackageTest, MayBeEmpty)
{
    OwnPackage package;
    package.initialize();
    EXPECT_TRUE(package.isUp());
    package.finalize();
    EXPECT_FALSE(package.isUp());
}

TEST_F(ApPackageTest, StopsWhatItStartedWhenThatFails)
{
    OwnPackage package(Zu::atStart([] { throw std::runtime_error("start"); }),
                       Zu::atStop([] { steps.emplace_back("stop"); }));
    OwnPart a("a");
    OwnPart b("b");
    package.add(a);
    package.add(b);
    EXPECT_THROW(package.initialize(), std::runtime_error);
    EXPECT_FALSE(package.isUp());
    EXPECT_EQ(steps, (Texts{"+a", "+b", "-b", "-a"}));
}

TEST_F(ApPackageTest, StopsThePartsBeforeOneThatFails)
{
    OwnPackage package(Zu::atStart([] { steps.emplace_back("start"); }));
    OwnPart a("a");
    OwnPart b("b", true);
    OwnPart c("c");
    package.add(a);
    package.add(b);
    package.add(c);
    EXPECT_THROW(package.initialize(), std::runtime_error);
    EXPECT_EQ(steps, (Texts{"+a", "-a"}));
}

TEST_F(ApPackageTest, StopsItsPartsThoughItsOwnStopFails)
{
    OwnPackage package(Zu::atStop([] { throw std::runtime_error("stop"); }));
    OwnPart a("a");
    package.add(a);
    package.initialize();
    EXPECT_THROW(package.finalize(), std::runtime_error);
    EXPECT_EQ(steps, (Texts{"+a", "-a"}));
}

TEST_F(ApPackageTest, TagsOfEitherKindNameTheirPackages)
{
    EXPECT_EQ(Zu::packageType<ZuInit::logger>(), Zu::InInit<ZuInit::logger>::getType());
    EXPECT_EQ(Zu::packageType<apPackageTest::declared>(),
              Zu::InInit<Zu::ApShort<apPackageTest::declared>>::getType());
    EXPECT_EQ(*Zu::packageType<apPackageTestFirst>(), typeid(Zu::packageOf<apPackageTestFirst>()));
    EXPECT_EQ(Zu::packageType<apPackageTest::longForm>(),
              Zu::InInit<apPackageTest::longForm>::getType());
}

TEST_F(ApPackageTest, IsNamedAndNeedsTheBase)
{
    ApPackage& package = Zu::packageOf<apPackageTestFirst>();
    EXPECT_STREQ(package.getName(), "apPackageTestFirst");
    ASSERT_EQ(package.getDependencies().size(), 1U);
    EXPECT_EQ(package.getDependencies()[0], Zu::InInit<ZuInit::base>::getType());
}

} // namespace
