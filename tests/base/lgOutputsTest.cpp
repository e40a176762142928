#include "base/lgOutputs.h"

#include "support/fileTest.h"
#include "support/tempDir.h"

#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using Zu::LgOutputs;
using Zu::LgSetup;
namespace LgTypes = Zu::LgTypes;

void nothing(std::ostream&) {}

class LgOutputsTest : public testing::Test
{
protected:
    // The level writes to a file of this name in the test's directory.
    void name(LgTypes::Level level, const char* file, bool appends = false)
    {
        _setup[level]._file = _directory.file(file);
        _setup[level]._append = appends;
    }

    support::TempDir _directory;
    LgSetup _setup;
    LgOutputs _outputs;
};

TEST_F(LgOutputsTest, OpensOneStreamForEachFile)
{
    name(LgTypes::Error, "one.log");
    name(LgTypes::Warning, "two.log");
    name(LgTypes::Profiling, "one.log");
    std::vector<std::ostream*> opened;
    _outputs.open(_setup, nullptr, [&](std::ostream& stream) { opened.push_back(&stream); });
    EXPECT_EQ(opened, (std::vector<std::ostream*>{_outputs.get(LgTypes::Error),
                                                  _outputs.get(LgTypes::Warning)}));
    EXPECT_EQ(_outputs.get(LgTypes::Profiling), _outputs.get(LgTypes::Error));
    EXPECT_TRUE(_outputs.areShared(LgTypes::Error, LgTypes::Profiling));
    EXPECT_FALSE(_outputs.areShared(LgTypes::Error, LgTypes::Warning));
    EXPECT_EQ(_outputs.get(LgTypes::Tracing), nullptr);
    EXPECT_FALSE(_outputs.areShared(LgTypes::Tracing, LgTypes::FatalError));
}

TEST_F(LgOutputsTest, TheFirstLevelOfAFileSaysWhetherItIsAppendedTo)
{
    for (const bool firstAppends : {true, false})
    {
        const char* const file = firstAppends ? "kept.log" : "emptied.log";
        support::writeFile(_directory.file(file), "before\n");
        name(LgTypes::FatalError, file, firstAppends);
        name(LgTypes::Error, file, !firstAppends);
        _outputs.open(_setup, nullptr, &nothing);
        *_outputs.get(LgTypes::Error) << "now\n";
        _outputs.closeAll();
        EXPECT_EQ(support::readFile(_directory.file(file)),
                  firstAppends ? "before\nnow\n" : "now\n");
    }
}

TEST_F(LgOutputsTest, AFileThatCannotBeOpenedHasAFailedStream)
{
    name(LgTypes::Error, "missing/one.log");
    int count = 0;
    _outputs.open(_setup, nullptr, [&](std::ostream&) { ++count; });
    ASSERT_NE(_outputs.get(LgTypes::Error), nullptr);
    EXPECT_TRUE(_outputs.get(LgTypes::Error)->fail());
    EXPECT_EQ(count, 1);
}

TEST_F(LgOutputsTest, ClosesAStreamForAllThatShareIt)
{
    name(LgTypes::Error, "one.log");
    name(LgTypes::Warning, "two.log");
    name(LgTypes::Informational, "one.log");
    _outputs.open(_setup, nullptr, &nothing);
    _outputs.close(LgTypes::Informational);
    EXPECT_EQ(_outputs.get(LgTypes::Error), nullptr);
    EXPECT_EQ(_outputs.get(LgTypes::Informational), nullptr);
    EXPECT_NE(_outputs.get(LgTypes::Warning), nullptr);
}

TEST_F(LgOutputsTest, ClosingALevelWithoutAStreamChangesNothing)
{
    name(LgTypes::Error, "one.log");
    _outputs.open(_setup, nullptr, &nothing);
    _outputs.close(LgTypes::Tracing);
    EXPECT_NE(_outputs.get(LgTypes::Error), nullptr);
}

TEST_F(LgOutputsTest, WhatTheBannerRaisesLeavesTheFilesThatAreOpen)
{
    name(LgTypes::Error, "one.log");
    name(LgTypes::Warning, "two.log");
    name(LgTypes::Informational, "three.log");
    int count = 0;
    EXPECT_THROW(_outputs.open(_setup, nullptr,
                               [&](std::ostream&)
                               {
                                   if (++count == 2) throw std::runtime_error("no lock");
                               }),
                 std::runtime_error);
    EXPECT_NE(_outputs.get(LgTypes::Error), nullptr);
    EXPECT_EQ(_outputs.get(LgTypes::Informational), nullptr);
    _outputs.closeAll();
    for (const LgTypes::Level level : Zu::LG_LEVELS) EXPECT_EQ(_outputs.get(level), nullptr);
}

TEST_F(LgOutputsTest, OpensAgainAfterItsEnd)
{
    name(LgTypes::Error, "one.log");
    for (const char* const text : {"first\n", "second\n"})
    {
        _outputs.open(_setup, nullptr, &nothing);
        *_outputs.get(LgTypes::Error) << text;
        _outputs.close(LgTypes::Error);
        EXPECT_EQ(support::readFile(_directory.file("one.log")), text);
    }
}

} // namespace
