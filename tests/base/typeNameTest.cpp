#include "base/typeName.h"

#include "base/inContextAlias.h"
#include "base/inEx.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

namespace typeNameTest
{

struct Outer
{
    struct Inner
    {
    };
};

template <class T, int N> struct Sized
{
};

template <int N> struct Numbered
{
};

// The names of Numbered<0> to Numbered<N - 1>, in this order.
template <int N> void addNames(std::vector<const char*>& names)
{
    if constexpr (N > 0)
    {
        addNames<N - 1>(names);
        names.push_back(Zu::typeName(typeid(Numbered<N - 1>)));
    }
}

} // namespace typeNameTest

namespace
{

using Zu::typeName;

TEST(TypeName, IsWhatAProgrammerWrites)
{
    EXPECT_STREQ(typeName(typeid(int)), "int");
    EXPECT_STREQ(typeName(typeid(unsigned long long)), "unsigned long long");
    EXPECT_STREQ(typeName(typeid(const char*)), "char const*");
    EXPECT_STREQ(typeName(typeid(typeNameTest::Outer::Inner)), "typeNameTest::Outer::Inner");
    EXPECT_STREQ(typeName(typeid(typeNameTest::Sized<int, 3>)), "typeNameTest::Sized<int, 3>");
}

TEST(TypeName, NamesTheTypesOfTheLibrary)
{
    EXPECT_STREQ(typeName(typeid(Zu::InEx::ExDoubleInit)), "Zu::InEx::ExDoubleInit");
    EXPECT_STREQ(typeName(typeid(Zu::InContextAlias<Zu::InInitEnv, 1>)),
                 "Zu::InContextAlias<Zu::InInitEnv, 1>");
}

TEST(TypeName, NamesTheDynamicTypeOfAnObject)
{
    const Zu::InEx::ExDoubleInit exception("a.cpp", 1);
    const Zu::ExBase& root = exception;
    EXPECT_STREQ(typeName(typeid(root)), "Zu::InEx::ExDoubleInit");
}

TEST(TypeName, EqualTypesHaveOneText)
{
    const char* const name = typeName(typeid(typeNameTest::Outer));
    typeName(typeid(typeNameTest::Outer::Inner));
    EXPECT_EQ(typeName(typeid(typeNameTest::Outer)), name);
    EXPECT_STREQ(name, "typeNameTest::Outer");
}

TEST(TypeName, ThreadsThatAskAtTheSameTimeGetTheSameTexts)
{
    constexpr int TYPES = 64;
    std::vector<std::vector<const char*>> names(4);
    std::vector<std::thread> threads;
    for (std::vector<const char*>& own : names)
        threads.emplace_back([&own] { typeNameTest::addNames<TYPES>(own); });
    for (std::thread& thread : threads) thread.join();

    for (int i = 0; i < TYPES; ++i)
        EXPECT_EQ(names[0].at(static_cast<std::size_t>(i)),
                  "typeNameTest::Numbered<" + std::to_string(i) + ">");
    for (const std::vector<const char*>& own : names) EXPECT_EQ(own, names[0]);
}

} // namespace
