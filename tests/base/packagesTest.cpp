// The declared dependencies of the library's packages, from objects beside the library's own.

#include "base/inInit.h"
#include "base/zuInit.h"

#include <gtest/gtest.h>
#include <string>
#include <typeinfo>
#include <vector>

namespace Zu
{

// Each is written in the package's own source.
template <> InInit<ZuInit::base>::InInit();
template <> InInit<ZuInit::baseMath>::InInit();
template <> InInit<ZuInit::debugging>::InInit();
template <> InInit<ZuInit::discreteTime>::InInit();
template <> InInit<ZuInit::heapMgr>::InInit();
template <> InInit<ZuInit::initArg>::InInit();
template <> InInit<ZuInit::initialize>::InInit();
template <> InInit<ZuInit::initVars>::InInit();
template <> InInit<ZuInit::logger>::InInit();
template <> InInit<ZuInit::osal>::InInit();
template <> InInit<ZuInit::profiling>::InInit();
template <> InInit<ZuInit::random>::InInit();
template <> InInit<ZuInit::testing>::InInit();

} // namespace Zu

namespace
{

using Zu::InInit;
using Names = std::vector<std::string>;

template <class Tag> bool isType(const std::type_info& type)
{
    return type == *InInit<Tag>::getType();
}

std::string nameOf(const std::type_info& type)
{
    const struct
    {
        const char* _name;
        bool (*_isIt)(const std::type_info&);
    } rows[] = {
        {"base", isType<ZuInit::base>},
        {"baseMath", isType<ZuInit::baseMath>},
        {"debugging", isType<ZuInit::debugging>},
        {"discreteTime", isType<ZuInit::discreteTime>},
        {"heapMgr", isType<ZuInit::heapMgr>},
        {"initArg", isType<ZuInit::initArg>},
        {"initialize", isType<ZuInit::initialize>},
        {"initVars", isType<ZuInit::initVars>},
        {"logger", isType<ZuInit::logger>},
        {"osal", isType<ZuInit::osal>},
        {"profiling", isType<ZuInit::profiling>},
        {"random", isType<ZuInit::random>},
        {"testing", isType<ZuInit::testing>},
    };
    for (const auto& row : rows)
        if (row._isIt(type)) return row._name;
    return "another";
}

// The name of a package, and those of its dependencies in the order of their declaration.
template <class Tag> Names namesOf()
{
    InInit<Tag> package;
    Names names{package.getName()};
    for (const std::type_info* const type : package.getDependencies())
        names.push_back(nameOf(*type));
    return names;
}

TEST(InInit, ThePackagesOfTheLibraryNeedTheseDirectly)
{
    EXPECT_EQ(
        namesOf<ZuInit::base>(),
        (Names{"base", "random", "discreteTime", "baseMath", "initVars", "testing", "debugging",
               "logger", "profiling", "osal", "initArg", "heapMgr", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::baseMath>(),
              (Names{"baseMath", "debugging", "profiling", "osal", "initArg", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::debugging>(),
              (Names{"debugging", "logger", "osal", "initArg", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::discreteTime>(), (Names{"discreteTime", "baseMath", "debugging",
                                                      "profiling", "initArg", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::heapMgr>(), (Names{"heapMgr", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::initArg>(), (Names{"initArg", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::initialize>(), (Names{"initialize"}));
    EXPECT_EQ(namesOf<ZuInit::initVars>(), (Names{"initVars", "osal", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::logger>(), (Names{"logger", "profiling", "osal", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::osal>(), (Names{"osal", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::profiling>(), (Names{"profiling", "osal", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::random>(),
              (Names{"random", "debugging", "profiling", "osal", "initArg", "initialize"}));
    EXPECT_EQ(namesOf<ZuInit::testing>(), (Names{"testing", "debugging", "logger", "profiling",
                                                 "osal", "initArg", "heapMgr", "initialize"}));
}

} // namespace
