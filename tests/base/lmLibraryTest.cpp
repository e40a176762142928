#include "base/lmLibrary.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>

namespace
{

using Zu::LmBlock;
using Zu::LmLibrary;

static_assert(LmBlock::Read == 4);
static_assert(LmBlock::Write == 8);
static_assert(LmBlock::Execute == 16);
static_assert(LmBlock::Copy == 32);
static_assert(std::is_nothrow_move_constructible_v<LmLibrary>);
static_assert(std::is_nothrow_move_assignable_v<LmLibrary>);

LmBlock blockOf(int& object)
{
    return {LmBlock::Read | LmBlock::Write, &object, &object, sizeof object};
}

TEST(LmLibrary, ANewOneIsUnknown)
{
    const LmLibrary library;
    EXPECT_EQ(library._base, nullptr);
    EXPECT_EQ(library._address, nullptr);
    EXPECT_STREQ(library._path.get(), "Unknown");
    EXPECT_TRUE(library._blocks.empty());
}

TEST(LmLibrary, IsMadeOfABaseAndAPath)
{
    int object = 0;
    std::string path = "/lib/libSample.so";
    const LmLibrary library(&object, path.c_str());
    path = "changed";
    EXPECT_EQ(library._base, &object);
    EXPECT_EQ(library._address, &object);
    EXPECT_STREQ(library._path.get(), "/lib/libSample.so");
    EXPECT_TRUE(library._blocks.empty());
}

void expectSample(const LmLibrary& library, int& object)
{
    EXPECT_EQ(library._base, &object);
    EXPECT_EQ(library._address, &object);
    ASSERT_TRUE(library._path.get());
    EXPECT_STREQ(library._path.get(), "sample");
    ASSERT_EQ(library._blocks.size(), 1U);
    EXPECT_EQ(library._blocks[0]._address, &object);
    EXPECT_EQ(library._blocks[0]._size, sizeof object);
    EXPECT_EQ(library._blocks[0]._flags, 12U);
}

TEST(LmLibrary, ACopyHasAPathOfItsOwn)
{
    int object = 0;
    LmLibrary source(&object, "sample");
    source._blocks.push_back(blockOf(object));
    const LmLibrary copy(source);
    LmLibrary assigned;
    assigned = source;
    for (const LmLibrary* library : {&copy, &std::as_const(assigned)})
    {
        expectSample(*library, object);
        EXPECT_NE(library->_path.get(), source._path.get());
    }
    source._path[0] = 'S';
    source._blocks.clear();
    expectSample(copy, object);
    expectSample(assigned, object);
}

TEST(LmLibrary, AssignedToItselfItStaysAsItIs)
{
    int object = 0;
    LmLibrary library(&object, "sample");
    library._blocks.push_back(blockOf(object));
    const LmLibrary& itself = library;
    library = itself;
    expectSample(library, object);
}

TEST(LmLibrary, MovesWithItsPath)
{
    int object = 0;
    LmLibrary source(&object, "sample");
    source._blocks.push_back(blockOf(object));
    const char* const path = source._path.get();
    LmLibrary moved(std::move(source));
    expectSample(moved, object);
    EXPECT_EQ(moved._path.get(), path);
    LmLibrary assigned(nullptr, "other");
    assigned = std::move(moved);
    expectSample(assigned, object);
    EXPECT_EQ(assigned._path.get(), path);
}

} // namespace
