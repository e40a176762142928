#include "base/osFile.h"

#include "base/exSysError.h"
#include "base/osDateUtil.h"
#include "base/osFileEx.h"
#include "base/osFileReader.h"
#include "base/osFileTools.h"
#include "base/osFileWriter.h"
#include "support/errorCode.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"
#include "support/vtableSlot.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using support::codeOf;
using support::ModeMaskGuard;
using support::modeOf;
using support::noise;
using support::onWindows;
using support::readFile;
using support::slotOf;
using support::VariableGuard;
using support::writeFile;
using Zu::ArrayPtr;
using Zu::ExSysErrorWindows;
using Zu::ObjPtr;
using Zu::OsDateTypes;
using Zu::OsDateUtil;
using Zu::OsFile;
using Zu::OsFileEx;
using Zu::OsFilePath;
using Zu::OsFileReader;
using Zu::OsFileTools;
using Zu::OsFileTypes;
using Zu::OsFileWriter;

static_assert(std::has_virtual_destructor_v<OsFile>);
static_assert(!std::is_convertible_v<OsFilePath, OsFile>);

const OsFileTypes::Permissions usual;

OsFilePath pathOf(const std::string& text)
{
    return OsFilePath(text.c_str());
}

OsFile fileOf(const std::string& text)
{
    return OsFile(pathOf(text));
}

std::string textOf(const OsFilePath& path)
{
    return path.getChars();
}

std::uint64_t countOf(const OsDateTypes::DateRep& date)
{
    return std::uint64_t{date._high} << 32 | date._low;
}

// The count of a date of the system's clock, without fractions of a second.
template <class Time> std::uint64_t countOf(Time time)
{
    using namespace std::chrono;
    const seconds unix = floor<seconds>(time.time_since_epoch());
    const auto since1601 = unix - sys_days(year(1601) / January / 1).time_since_epoch();
    return static_cast<std::uint64_t>(duration_cast<seconds>(since1601).count()) * 10000000;
}

std::uint64_t lastWriteOf(const std::string& path)
{
    return countOf(std::chrono::file_clock::to_sys(std::filesystem::last_write_time(path)));
}

void setLastWrite(const std::string& path, std::chrono::sys_time<std::chrono::nanoseconds> time)
{
    std::filesystem::last_write_time(
        path, std::chrono::time_point_cast<std::filesystem::file_time_type::duration>(
                  std::chrono::file_clock::from_sys(time)));
}

// The reason of the exception of this type that an act raises; empty if it raises none.
template <class Exception, class Act> std::string reasonOf(Act act)
{
    try
    {
        act();
    }
    catch (const Exception& ex)
    {
        return ex.getReason();
    }
    return "";
}

// Opens what is protected.
class OpenFile : public OsFile
{
public:
    using OsFile::close;
    using OsFile::open;
    using OsFile::OsFile;
    using OsFile::setPath;
};

// Claims to exist or not, as a test sets.
class ToldFile : public OsFile
{
public:
    ToldFile(const OsFilePath& path, bool isThere) : OsFile(path), _isThere(isThere) {}

    bool exists() const override
    {
        ++_asked;
        return _isThere;
    }

    bool _isThere;
    mutable int _asked = 0;
};

class TypedFile : public OsFile
{
public:
    TypedFile(const OsFilePath& path, OsFileTypes::ElementType type) : OsFile(path), _type(type) {}

    OsFileTypes::ElementType getType() const override
    {
        return _type;
    }

    OsFileTypes::ElementType _type;
};

// All questions that need the file to be there.
const std::vector<std::pair<const char*, std::function<void(const OsFile&)>>> questions = {
    {"getSize", [](const OsFile& file) { file.getSize(); }},
    {"getType", [](const OsFile& file) { file.getType(); }},
    {"isFile", [](const OsFile& file) { file.isFile(); }},
    {"isDirectory", [](const OsFile& file) { file.isDirectory(); }},
    {"isSymLink", [](const OsFile& file) { file.isSymLink(); }},
    {"getOwner", [](const OsFile& file) { file.getOwner(); }},
    {"getLastModificationTime", [](const OsFile& file) { file.getLastModificationTime(); }},
    {"getLastAccessTime", [](const OsFile& file) { file.getLastAccessTime(); }},
    {"getUnbufferedInfo", [](const OsFile& file) { file.getUnbufferedInfo(); }},
};

class OsFileTest : public testing::Test
{
protected:
    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

    OsFilePath path(const std::string& name) const
    {
        return pathOf(file(name));
    }

    OsFile made(const std::string& name, const std::string& content) const
    {
        writeFile(file(name), content);
        return OsFile(path(name));
    }

    std::string directory() const
    {
        return _dir.path();
    }

private:
    support::TempDir _dir;
};

class OsFileLinuxTest : public OsFileTest
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Links, devices, modes and owners are Linux's.";
    }
};

// Whether modes stop this user; they do not stop the system's own.
bool isStoppedByModes(const std::string& readOnlyFile)
{
    return !std::ofstream(readOnlyFile, std::ios::binary | std::ios::app).is_open();
}

TEST(OsFileTypes, ElementTypesHaveFixedValues)
{
    EXPECT_EQ(OsFileTypes::ElementRegular, 0);
    EXPECT_EQ(OsFileTypes::ElementDirectory, 1);
    EXPECT_EQ(OsFileTypes::ElementSpecial, 3);
}

TEST(OsFileTypes, UnbufferedFiguresAreZeroUnlessGiven)
{
    using Info = OsFileTypes::UnbufferedInfo;
    static_assert(!std::is_polymorphic_v<Info>);
    const Info none;
    EXPECT_EQ(none.getAlignment(), 0U);
    EXPECT_EQ(none.getBlockSize(), 0U);
    EXPECT_EQ(none.getMaxSize(), 0U);
    const Info given(1, 2, 0xffffffff);
    EXPECT_EQ(given.getAlignment(), 1U);
    EXPECT_EQ(given.getBlockSize(), 2U);
    EXPECT_EQ(given.getMaxSize(), 0xffffffffU);
}

TEST(OsFile, VirtualOperationsKeepTheirSlots)
{
    EXPECT_EQ(slotOf(&OsFile::getOwner), 2);
    EXPECT_EQ(slotOf(&OsFile::getSize), 3);
    EXPECT_EQ(slotOf(&OsFile::getLastModificationTime), 4);
    EXPECT_EQ(slotOf(&OsFile::getLastAccessTime), 5);
    EXPECT_EQ(slotOf(&OsFile::getUnbufferedInfo), 6);
    EXPECT_EQ(slotOf(&OsFile::getAccess), 7);
    EXPECT_EQ(slotOf(&OsFile::isReadable), 8);
    EXPECT_EQ(slotOf(&OsFile::isWritable), 9);
    EXPECT_EQ(slotOf(&OsFile::isFile), 10);
    EXPECT_EQ(slotOf(&OsFile::isDirectory), 11);
    EXPECT_EQ(slotOf(&OsFile::isSymLink), 12);
    EXPECT_EQ(slotOf(&OsFile::getType), 13);
    EXPECT_EQ(slotOf(&OsFile::exists), 14);
    EXPECT_EQ(slotOf(&OsFile::refreshInfo), 15);
    EXPECT_EQ(slotOf(&OsFile::remove), 16);
    EXPECT_EQ(slotOf(&OsFile::renameTo), 17);
    EXPECT_EQ(slotOf(&OsFile::copyTo), 18);
}

TEST_F(OsFileTest, ThePathIsKeptAsGivenAndNeedsNoFile)
{
    for (const char* const text : {"", "missing", "./a/../b", "a b"})
        EXPECT_STREQ(OsFile(OsFilePath(text)).getPath().getChars(), text);
    EXPECT_FALSE(OsFile(path("missing")).exists());
    EXPECT_FALSE(std::filesystem::exists(file("missing")));
}

TEST_F(OsFileTest, ACopyHasAPathOfItsOwn)
{
    OsFile original = made("f", "content");
    const OsFile copy = original;
    original.renameTo(path("g"));
    EXPECT_EQ(textOf(copy.getPath()), file("f"));
    EXPECT_FALSE(copy.exists());
    OsFile assigned(path("other"));
    assigned = original;
    EXPECT_EQ(textOf(assigned.getPath()), file("g"));
    EXPECT_TRUE(assigned.exists());
}

TEST(OsFile, EveryOperationRefusesTheEmptyPath)
{
    OpenFile empty{OsFilePath()};
    const char* const reason = "File has null file path.";
    const auto reasonOfNull = [](const std::function<void()>& act)
    { return reasonOf<OsFileEx::ExNullFilePath>(act); };
    EXPECT_EQ(reasonOfNull([&] { empty.exists(); }), reason);
    for (const auto& [name, ask] : questions)
        EXPECT_EQ(reasonOfNull([&, &ask = ask] { ask(empty); }), reason) << name;
    EXPECT_EQ(reasonOfNull([&] { empty.getAccess(); }), reason);
    EXPECT_EQ(reasonOfNull([&] { empty.isReadable(); }), reason);
    EXPECT_EQ(reasonOfNull([&] { empty.isWritable(); }), reason);
    EXPECT_EQ(reasonOfNull([&] { empty.create(usual, false); }), reason);
    EXPECT_EQ(reasonOfNull([&] { empty.create(usual, true); }), reason);
    EXPECT_EQ(reasonOfNull([&] { empty.remove(); }), reason);
    EXPECT_EQ(reasonOfNull([&] { empty.open(1); }), reason);
    for (const char* const other : {"", "other"})
    {
        EXPECT_EQ(reasonOfNull([&] { empty.renameTo(OsFilePath(other)); }), reason);
        EXPECT_EQ(reasonOfNull([&] { empty.copyTo(OsFilePath(other)); }), reason);
    }
    EXPECT_TRUE(empty.getPath().isEmpty());
}

TEST_F(OsFileTest, TheEmptyPathIsNoTarget)
{
    OsFile present = made("f", "content");
    OsFile missing(path("missing"));
    for (OsFile* const each : {&present, &missing})
    {
        EXPECT_THROW(each->renameTo(OsFilePath()), OsFileEx::ExNullFilePath);
        EXPECT_THROW(each->copyTo(OsFilePath()), OsFileEx::ExNullFilePath);
    }
    EXPECT_EQ(textOf(present.getPath()), file("f"));
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileTest, QuestionsAboutAMissingFileRaiseWithItsPath)
{
    for (const char* const name : {"missing", "no/f"})
        for (const auto& [question, ask] : questions)
        {
            const OsFile missing(path(name));
            EXPECT_EQ(reasonOf<OsFileEx::ExInvalidPath>([&, &ask = ask] { ask(missing); }),
                      "Invalid path: '" + file(name) + "'.")
                << question;
        }
}

TEST_F(OsFileTest, WhatRestsOnExistenceAsksTheDerivedClass)
{
    writeFile(file("f"), "content");
    for (const auto& [name, ask] : questions)
    {
        const ToldFile denied(path("f"), false);
        EXPECT_THROW(ask(denied), OsFileEx::ExInvalidPath) << name;
        EXPECT_EQ(denied._asked, 1) << name;
        const ToldFile confirmed(path("f"), true);
        EXPECT_NO_THROW(ask(confirmed)) << name;
        EXPECT_EQ(confirmed._asked, 1) << name;
    }
}

TEST_F(OsFileTest, AFileThatVanishesBehindTheLookRaisesTheCodeOfTheSystem)
{
    const ToldFile gone(path("missing"), true);
    EXPECT_EQ(codeOf([&] { gone.getSize(); }), 2);
    EXPECT_EQ(codeOf([&] { gone.getType(); }), 2);
    EXPECT_EQ(codeOf([&] { gone.isFile(); }), 2);
    EXPECT_EQ(codeOf([&] { gone.isDirectory(); }), 2);
    EXPECT_EQ(codeOf([&] { gone.getLastModificationTime(); }), 2);
    EXPECT_EQ(codeOf([&] { gone.getLastAccessTime(); }), 2);
    EXPECT_FALSE(gone.isSymLink());
}

TEST_F(OsFileLinuxTest, AFileThatVanishesBehindTheLookHasNoOwnerAndNoVolume)
{
    const ToldFile gone(path("missing"), true);
    EXPECT_EQ(codeOf([&] { gone.getOwner(); }), 2);
    EXPECT_EQ(codeOf([&] { gone.getUnbufferedInfo(); }), 2);
}

TEST_F(OsFileTest, WhatDoesNotRestOnExistenceDoesNotAskForIt)
{
    writeFile(file("f"), "content");
    ToldFile denied(path("f"), false);
    EXPECT_EQ(denied.getAccess(), 3);
    EXPECT_TRUE(denied.isReadable());
    EXPECT_TRUE(denied.isWritable());
    denied.renameTo(path("g"));
    denied.remove();
    denied.create(usual, true);
    EXPECT_EQ(denied._asked, 0);
}

TEST_F(OsFileTest, FileAndDirectoryFollowTheTypeThatTheDerivedClassTells)
{
    writeFile(file("f"), "content");
    const TypedFile regular(pathOf(directory()), OsFileTypes::ElementRegular);
    EXPECT_TRUE(regular.isFile());
    EXPECT_FALSE(regular.isDirectory());
    const TypedFile folder(path("f"), OsFileTypes::ElementDirectory);
    EXPECT_FALSE(folder.isFile());
    EXPECT_TRUE(folder.isDirectory());
    const TypedFile special(path("f"), OsFileTypes::ElementSpecial);
    EXPECT_FALSE(special.isFile());
    EXPECT_FALSE(special.isDirectory());
}

TEST_F(OsFileTest, AFileIsAFile)
{
    const OsFile plain = made("f", "content");
    EXPECT_TRUE(plain.exists());
    EXPECT_EQ(plain.getType(), OsFileTypes::ElementRegular);
    EXPECT_TRUE(plain.isFile());
    EXPECT_FALSE(plain.isDirectory());
    EXPECT_FALSE(plain.isSymLink());
}

TEST_F(OsFileTest, ADirectoryIsADirectory)
{
    const OsFile folder = fileOf(directory());
    EXPECT_TRUE(folder.exists());
    EXPECT_EQ(folder.getType(), OsFileTypes::ElementDirectory);
    EXPECT_FALSE(folder.isFile());
    EXPECT_TRUE(folder.isDirectory());
    EXPECT_FALSE(folder.isSymLink());
    // It can't be opened like a file.
    EXPECT_EQ(folder.getAccess(), 0);
    EXPECT_FALSE(folder.isReadable());
    EXPECT_FALSE(folder.isWritable());
}

TEST_F(OsFileLinuxTest, DevicesAreSpecial)
{
    for (const char* const device : {"/dev/null", "/dev/zero", "/dev/full"})
    {
        const OsFile special = fileOf(device);
        EXPECT_EQ(special.getType(), OsFileTypes::ElementSpecial) << device;
        EXPECT_FALSE(special.isFile()) << device;
        EXPECT_FALSE(special.isDirectory()) << device;
        EXPECT_EQ(special.getAccess(), 3) << device;
    }
}

TEST_F(OsFileLinuxTest, ALinkCountsAsWhatItLeadsToAndAsALink)
{
    made("f", "content");
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("f"), file("toFile"));
    std::filesystem::create_symlink(file("d"), file("toDir"));
    std::filesystem::create_symlink(file("missing"), file("dangling"));
    EXPECT_TRUE(OsFile(path("toFile")).isSymLink());
    EXPECT_TRUE(OsFile(path("toFile")).isFile());
    EXPECT_EQ(OsFile(path("toFile")).getSize(), 7U);
    EXPECT_TRUE(OsFile(path("toDir")).isSymLink());
    EXPECT_TRUE(OsFile(path("toDir")).isDirectory());
    EXPECT_FALSE(OsFile(path("dangling")).exists());
    EXPECT_THROW(OsFile(path("dangling")).isSymLink(), OsFileEx::ExInvalidPath);
}

TEST_F(OsFileTest, TheSizeIsTheNumberOfBytes)
{
    for (const std::size_t size : {0U, 1U, 511U, 512U, 65535U, 65536U, 65537U, 1U << 20})
        EXPECT_EQ(made("f", noise(size)).getSize(), size);
}

TEST_F(OsFileTest, ADirectoryHasNoSize)
{
    // Is a directory; on Windows access is denied.
    const int code = onWindows ? 5 : 21;
    EXPECT_EQ(codeOf([&] { (void)fileOf(directory()).getSize(); }), code);
    EXPECT_EQ(codeOf([&] { (void)OsFileTools::getSize64(pathOf(directory())); }), code);
}

TEST_F(OsFileTest, TheSizeIsAskedAnewEachTime)
{
    const OsFile plain = made("f", "content");
    EXPECT_EQ(plain.getSize(), 7U);
    writeFile(file("f"), "more content");
    EXPECT_EQ(plain.getSize(), 12U);
}

TEST_F(OsFileTest, RefreshingChangesNothing)
{
    OsFile plain = made("f", "content");
    plain.refreshInfo();
    EXPECT_EQ(plain.getSize(), 7U);
    EXPECT_EQ(textOf(plain.getPath()), file("f"));
    EXPECT_NO_THROW(OsFile(path("missing")).refreshInfo());
    EXPECT_NO_THROW(OsFile(OsFilePath()).refreshInfo());
}

TEST_F(OsFileTest, TheLargestSizeThatIsToldIsTwoLessThan4GiB)
{
    OsFileWriter writer(path("f"), usual, false);
    const OsFile large(path("f"));
    OsFileTools::reserve64(writer, 0x80000000);
    EXPECT_EQ(large.getSize(), 0x80000000U);
    OsFileTools::reserve64(writer, 0xfffffffe);
    EXPECT_EQ(large.getSize(), 0xfffffffeU);
    for (const std::int64_t size : {std::int64_t{0xffffffff}, std::int64_t{0x100000000},
                                    std::int64_t{0x100000001}, std::int64_t{0x1ffffffff}})
    {
        OsFileTools::reserve64(writer, size);
        EXPECT_THROW(large.getSize(), ExSysErrorWindows) << size;
        // What does not depend on it is reported nevertheless.
        EXPECT_TRUE(large.isFile());
    }
}

TEST_F(OsFileTest, AccessIsReadingAndWriting)
{
    const OsFile plain = made("f", "content");
    EXPECT_EQ(plain.getAccess(), 3);
    EXPECT_TRUE(plain.isReadable());
    EXPECT_TRUE(plain.isWritable());
    // The attempt changes nothing.
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileLinuxTest, ExecutionIsNotLookedAt)
{
    const OsFile plain = made("f", "content");
    std::filesystem::permissions(file("f"), std::filesystem::perms::all);
    EXPECT_EQ(plain.getAccess(), 3);
}

TEST_F(OsFileTest, AMissingFileHasNoAccess)
{
    for (const char* const name : {"missing", "no/f"})
    {
        const OsFile missing(path(name));
        EXPECT_EQ(missing.getAccess(), 0);
        EXPECT_FALSE(missing.isReadable());
        EXPECT_FALSE(missing.isWritable());
        EXPECT_FALSE(missing.exists());
    }
}

TEST_F(OsFileTest, AFileThatIsOpenElsewhereHasNoAccessOnWindowsOnly)
{
    const OsFile plain = made("f", "content");
    const int expected = onWindows ? 0 : 3;
    {
        const OsFileReader reader(path("f"));
        EXPECT_EQ(plain.getAccess(), expected);
        EXPECT_EQ(plain.isReadable(), !onWindows);
        EXPECT_EQ(plain.isWritable(), !onWindows);
        // The size is available nevertheless.
        EXPECT_EQ(plain.getSize(), 7U);
    }
    {
        const OsFileWriter writer(path("f"), usual, false);
        EXPECT_EQ(plain.getAccess(), expected);
    }
    EXPECT_EQ(plain.getAccess(), 3);
}

TEST_F(OsFileTest, AReadOnlyFileIsNotWritable)
{
    const OsFile plain = made("f", "content");
    std::filesystem::permissions(file("f"), std::filesystem::perms::owner_read);
    const bool isStopped = isStoppedByModes(file("f"));
    if (isStopped)
    {
        EXPECT_FALSE(plain.isWritable());
        EXPECT_TRUE(plain.isReadable());
        EXPECT_EQ(plain.getAccess(), 1);
    }
    std::filesystem::permissions(file("f"), std::filesystem::perms::owner_all);
    EXPECT_EQ(plain.getAccess(), 3);
    if (!isStopped) GTEST_SKIP() << "Modes do not stop this user.";
}

TEST_F(OsFileLinuxTest, ARunningProgramIsReadableAndNotWritableEvenForTheSystemsOwnUser)
{
    const OsFile program = fileOf("/proc/self/exe");
    EXPECT_EQ(program.getAccess(), 1);
    EXPECT_TRUE(program.isReadable());
    EXPECT_FALSE(program.isWritable());
}

TEST_F(OsFileTest, DatesAreThoseOfTheFileInWholeSeconds)
{
    const OsFile plain = made("f", "content");
    const ObjPtr<OsDateTypes::DateRep> date(plain.getLastModificationTime());
    EXPECT_EQ(countOf(*date), lastWriteOf(file("f")));
    EXPECT_EQ(countOf(*date) % 10000000, 0U);
}

TEST_F(OsFileTest, AModificationTimeThatIsSetIsTold)
{
    using namespace std::chrono;
    using namespace std::chrono_literals;
    const OsFile plain = made("f", "content");
    // Noons of winter and summer, where no offset is in doubt.
    const sys_days days[] = {2001y / January / 15, 2016y / February / 29, 2024y / July / 15};
    for (const sys_days day : days)
        for (const nanoseconds fraction : {0ns, 1000000ns, 500000000ns, 999000000ns})
        {
            const sys_time<nanoseconds> time = day + 12h + 34min + 56s + fraction;
            setLastWrite(file("f"), time);
            const ObjPtr<OsDateTypes::DateRep> date(plain.getLastModificationTime());
            EXPECT_EQ(countOf(*date), countOf(time));
        }
}

TEST_F(OsFileLinuxTest, AChangeOfTheZoneChangesNoDate)
{
    using namespace std::chrono;
    using namespace std::chrono_literals;
    const OsFile plain = made("f", "content");
    const sys_time<nanoseconds> time = sys_days(2024y / July / 15) + 12h;
    setLastWrite(file("f"), time);
    const VariableGuard zone("TZ");
    for (const char* const value : {"XYZ-5", "XYZ3", "UTC0"})
    {
        zone.set(value);
        const ObjPtr<OsDateTypes::DateRep> date(plain.getLastModificationTime());
        EXPECT_EQ(countOf(*date), countOf(time)) << value;
    }
}

// 27 October 2024, when clocks in Central Europe went from 3:00 back to 2:00 at 1:00 UTC.
TEST_F(OsFileLinuxTest, FilesOfTheHourThatComesTwiceHaveTheirOwnDates)
{
    using namespace std::chrono;
    using namespace std::chrono_literals;
    const VariableGuard zone("TZ");
    zone.set("CET-1CEST,M3.5.0,M10.5.0/3");
    const OsFile plain = made("f", "content");
    for (minutes behind = -90min; behind <= 90min; behind += 10min)
    {
        const sys_time<nanoseconds> time = sys_days(2024y / October / 27) + 1h + behind;
        setLastWrite(file("f"), time);
        const ObjPtr<OsDateTypes::DateRep> date(plain.getLastModificationTime());
        EXPECT_EQ(countOf(*date), countOf(time)) << behind.count();
    }
}

TEST_F(OsFileLinuxTest, ADateBefore1970IsRoundedDownToo)
{
    using namespace std::chrono;
    using namespace std::chrono_literals;
    const OsFile plain = made("f", "content");
    const sys_time<nanoseconds> time = sys_days(1960y / January / 15) + 12h + 500ms;
    setLastWrite(file("f"), time);
    const ObjPtr<OsDateTypes::DateRep> date(plain.getLastModificationTime());
    EXPECT_EQ(countOf(*date), countOf(time));
}

TEST_F(OsFileTest, TheAccessTimeIsNotTheModificationTime)
{
    using namespace std::chrono;
    using namespace std::chrono_literals;
    // The clock of files may lag behind by a step; a second is plenty.
    const std::uint64_t before = countOf(system_clock::now() - 1s);
    const OsFile plain = made("f", "content");
    setLastWrite(file("f"), sys_days(2001y / January / 15) + 12h);
    const ObjPtr<OsDateTypes::DateRep> date(plain.getLastAccessTime());
    EXPECT_GE(countOf(*date), before);
    EXPECT_LE(countOf(*date), countOf(system_clock::now()));
    EXPECT_EQ(countOf(*date) % 10000000, 0U);
}

TEST_F(OsFileTest, ADirectoryHasDates)
{
    const OsFile folder = fileOf(directory());
    const ObjPtr<OsDateTypes::DateRep> date(folder.getLastModificationTime());
    EXPECT_EQ(countOf(*date), lastWriteOf(directory()));
    EXPECT_NO_THROW(folder.getLastAccessTime());
}

TEST_F(OsFileTest, TheOwnerIsEmptyOnWindows)
{
    if (!onWindows) GTEST_SKIP() << "Linux has owners.";
    const ArrayPtr<char> owner(made("f", "content").getOwner());
    EXPECT_STREQ(owner.get(), "");
}

// The name of the effective user of this process, by the lists that the system keeps as files.
std::string nameOfUser()
{
    std::string word;
    std::ifstream status("/proc/self/status");
    while (status >> word && word != "Uid:") continue;
    std::string real;
    std::string effective;
    status >> real >> effective;

    std::ifstream list("/etc/passwd");
    for (std::string line; std::getline(list, line);)
    {
        std::istringstream fields(line);
        std::string name;
        std::string password;
        std::string id;
        std::getline(fields, name, ':');
        std::getline(fields, password, ':');
        std::getline(fields, id, ':');
        if (id == effective) return name;
    }
    return effective;
}

TEST_F(OsFileLinuxTest, TheOwnerOfANewFileIsTheUserOfTheProcess)
{
    const std::string expected = nameOfUser();
    ASSERT_NE(expected, "");
    const ArrayPtr<char> owner(made("f", "content").getOwner());
    EXPECT_EQ(owner.get(), expected);
    const ArrayPtr<char> ownerOfDirectory(fileOf(directory()).getOwner());
    EXPECT_EQ(ownerOfDirectory.get(), expected);
}

TEST_F(OsFileLinuxTest, TheOwnerOfTheSystemsFilesIsRoot)
{
    const ArrayPtr<char> owner(fileOf("/proc/version").getOwner());
    EXPECT_STREQ(owner.get(), "root");
}

TEST_F(OsFileTest, UnbufferedTransfersKeepToAPowerOfTwo)
{
    const OsFile plain = made("f", "content");
    const ObjPtr<OsFileTypes::UnbufferedInfo> info(plain.getUnbufferedInfo());
    EXPECT_TRUE(std::has_single_bit(info->getAlignment()));
    EXPECT_GE(info->getAlignment(), 512U);
    EXPECT_EQ(info->getBlockSize(), info->getAlignment());
    EXPECT_EQ(info->getMaxSize(), 2147483647U);
    // They are the volume's, so the directory has the same.
    const ObjPtr<OsFileTypes::UnbufferedInfo> same(fileOf(directory()).getUnbufferedInfo());
    EXPECT_EQ(same->getAlignment(), info->getAlignment());
}

TEST_F(OsFileTest, AFileIsCreatedEmptyAndEmptiedUnlessExclusive)
{
    OsFile plain(path("f"));
    plain.create(usual, true);
    EXPECT_EQ(plain.getSize(), 0U);
    writeFile(file("f"), "content");
    EXPECT_THROW(plain.create(usual, true), OsFileEx::ExFileExists);
    EXPECT_EQ(readFile(file("f")), "content");
    plain.create(usual, false);
    EXPECT_EQ(plain.getSize(), 0U);
    EXPECT_THROW(OsFile(path("no/f")).create(usual, false), ExSysErrorWindows);
}

TEST_F(OsFileLinuxTest, ACreatedFileHasThePermissionsLessTheMask)
{
    const ModeMaskGuard mask(0026);
    OsFile plain(path("f"));
    plain.create(OsFileTypes::Permissions(7, 7, 7), true);
    EXPECT_EQ(modeOf(file("f")), 0751U);
}

TEST_F(OsFileTest, AFileIsRemoved)
{
    OsFile plain = made("f", "content");
    plain.remove();
    EXPECT_FALSE(std::filesystem::exists(file("f")));
    EXPECT_EQ(textOf(plain.getPath()), file("f"));
}

TEST_F(OsFileTest, RemovingAMissingFileRaises)
{
    OsFile missing(path("missing"));
    EXPECT_EQ(codeOf([&] { missing.remove(); }), 2);
    OsFile below(path("no/f"));
    EXPECT_EQ(codeOf([&] { below.remove(); }), onWindows ? 3 : 2);
}

TEST_F(OsFileTest, ADirectoryIsNotRemovedAsAFile)
{
    std::filesystem::create_directory(file("d"));
    OsFile folder(path("d"));
    // Is a directory; on Windows access is denied.
    EXPECT_EQ(codeOf([&] { folder.remove(); }), onWindows ? 5 : 21);
    EXPECT_TRUE(std::filesystem::is_directory(file("d")));
}

TEST_F(OsFileTest, AFileThatIsOpenElsewhereIsRemovedOnLinuxOnly)
{
    OsFile plain = made("f", "content");
    const OsFileReader reader(path("f"));
    EXPECT_EQ(codeOf([&] { plain.remove(); }), onWindows ? 32 : 0);
    EXPECT_EQ(std::filesystem::exists(file("f")), onWindows);
}

TEST_F(OsFileLinuxTest, RemovingALinkLeavesWhatItLeadsTo)
{
    made("f", "content");
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("f"), file("toFile"));
    std::filesystem::create_symlink(file("d"), file("toDir"));
    std::filesystem::create_symlink(file("missing"), file("dangling"));
    for (const char* const name : {"toFile", "toDir", "dangling"})
    {
        OsFile(path(name)).remove();
        EXPECT_FALSE(std::filesystem::is_symlink(file(name))) << name;
    }
    EXPECT_EQ(readFile(file("f")), "content");
    EXPECT_TRUE(std::filesystem::is_directory(file("d")));
}

TEST_F(OsFileTest, RenamingMovesTheFileAndTheObject)
{
    OsFile plain = made("f", "content");
    std::filesystem::create_directory(file("d"));
    plain.renameTo(path("g"));
    EXPECT_EQ(textOf(plain.getPath()), file("g"));
    EXPECT_FALSE(std::filesystem::exists(file("f")));
    EXPECT_EQ(readFile(file("g")), "content");
    plain.renameTo(path("d/h"));
    EXPECT_EQ(textOf(plain.getPath()), file("d/h"));
    EXPECT_EQ(readFile(file("d/h")), "content");
}

TEST_F(OsFileTest, ADirectoryIsRenamedWithWhatIsInIt)
{
    std::filesystem::create_directory(file("d"));
    writeFile(file("d/f"), "content");
    OsFile folder(path("d"));
    folder.renameTo(path("e"));
    EXPECT_EQ(readFile(file("e/f")), "content");
    EXPECT_EQ(textOf(folder.getPath()), file("e"));
}

TEST_F(OsFileTest, AFailedRenamingLeavesTheOldPath)
{
    OsFile missing(path("missing"));
    EXPECT_EQ(codeOf([&] { missing.renameTo(path("g")); }), 2);
    EXPECT_EQ(textOf(missing.getPath()), file("missing"));
    OsFile plain = made("f", "content");
    EXPECT_NE(codeOf([&] { plain.renameTo(path("no/f")); }), 0);
    EXPECT_EQ(textOf(plain.getPath()), file("f"));
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileTest, RenamingNeverReplaces)
{
    OsFile plain = made("f", "content");
    writeFile(file("g"), "other");
    std::filesystem::create_directory(file("d"));
    for (const char* const name : {"g", "d"})
    {
        EXPECT_EQ(codeOf([&] { plain.renameTo(path(name)); }), onWindows ? 183 : 17) << name;
        EXPECT_EQ(textOf(plain.getPath()), file("f"));
    }
    EXPECT_EQ(readFile(file("f")), "content");
    EXPECT_EQ(readFile(file("g")), "other");
}

TEST_F(OsFileLinuxTest, RenamingALinkMovesTheLinkAndReplacesNone)
{
    made("f", "content");
    std::filesystem::create_symlink(file("f"), file("link"));
    std::filesystem::create_symlink(file("missing"), file("dangling"));
    OsFile link(path("link"));
    EXPECT_EQ(codeOf([&] { link.renameTo(path("dangling")); }), 17);
    link.renameTo(path("moved"));
    EXPECT_TRUE(std::filesystem::is_symlink(file("moved")));
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileTest, RenamingToTheOwnPathOfTheObjectIsSafe)
{
    OsFile plain = made("f", "content");
    // The path is the object's own, which is about to change.
    codeOf([&] { plain.renameTo(plain.getPath()); });
    EXPECT_EQ(textOf(plain.getPath()), file("f"));
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileTest, DerivedClassesSetThePath)
{
    OpenFile plain(path("missing"));
    writeFile(file("f"), "content");
    plain.setPath(path("f"));
    EXPECT_EQ(textOf(plain.getPath()), file("f"));
    EXPECT_TRUE(plain.exists());
    plain.setPath(OsFilePath());
    EXPECT_THROW(plain.exists(), OsFileEx::ExNullFilePath);
}

TEST_F(OsFileTest, DerivedClassesOpenAndCloseHandles)
{
    const OpenFile missing(path("missing"));
    EXPECT_EQ(codeOf([&] { missing.open(1); }), 2);
    EXPECT_EQ(codeOf([&] { missing.open(3); }), 2);
    EXPECT_FALSE(std::filesystem::exists(file("missing")));
    writeFile(file("f"), "content");
    const OpenFile plain(path("f"));
    for (const int access : {1, 2, 3})
    {
        const std::int64_t handle = plain.open(access);
        EXPECT_NE(handle, -1);
        // Others are let in.
        const std::int64_t other = plain.open(3);
        EXPECT_NE(other, handle);
        EXPECT_NO_THROW(plain.close(other));
        EXPECT_NO_THROW(plain.close(handle));
    }
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileTest, ClosingNoHandleRaises)
{
    const OpenFile plain(path("f"));
    if (onWindows) GTEST_SKIP() << "There -1 stands for the process itself, which may be closed.";
    EXPECT_EQ(codeOf([&] { plain.close(-1); }), 9);
}

TEST_F(OsFileTest, ContentOfEverySizeIsCopied)
{
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 1U << 20, 3U << 19})
    {
        const std::string content = noise(size);
        OsFile plain = made("f", content);
        plain.copyTo(path("g"));
        EXPECT_TRUE(readFile(file("g")) == content) << size;
        EXPECT_TRUE(readFile(file("f")) == content) << size;
        EXPECT_EQ(textOf(plain.getPath()), file("f"));
    }
}

TEST_F(OsFileTest, ACopyReplacesWhatIsLonger)
{
    writeFile(file("g"), noise(200000));
    made("f", "content").copyTo(path("g"));
    EXPECT_EQ(readFile(file("g")), "content");
}

TEST_F(OsFileTest, ACopyIntoADirectoryHasTheBaseName)
{
    std::filesystem::create_directory(file("d"));
    OsFile plain = made("name.ext", "content");
    plain.copyTo(path("d"));
    EXPECT_EQ(readFile(file("d/name.ext")), "content");
    // With a separator at the end, and onto the copy that exists by now.
    writeFile(file("name.ext"), "new");
    plain.copyTo(pathOf(file("d") + OsFilePath::getSeparator()));
    EXPECT_EQ(readFile(file("d/name.ext")), "new");
}

TEST_F(OsFileLinuxTest, ACopyIntoALinkToADirectoryGoesIntoTheDirectory)
{
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("d"), file("link"));
    made("f", "content").copyTo(path("link"));
    EXPECT_EQ(readFile(file("d/f")), "content");
}

TEST_F(OsFileTest, ADirectoryOfTheBaseNameInTheTargetIsNotReplaced)
{
    std::filesystem::create_directories(file("d/f"));
    OsFile plain = made("f", "content");
    EXPECT_EQ(codeOf([&] { plain.copyTo(path("d")); }), onWindows ? 5 : 21);
    EXPECT_TRUE(std::filesystem::is_directory(file("d/f")));
}

TEST_F(OsFileTest, AMissingSourceLeavesTheTargetUntouched)
{
    OsFile missing(path("missing"));
    writeFile(file("g"), "content");
    std::filesystem::create_directory(file("d"));
    EXPECT_EQ(codeOf([&] { missing.copyTo(path("g")); }), 2);
    EXPECT_EQ(readFile(file("g")), "content");
    EXPECT_EQ(codeOf([&] { missing.copyTo(path("new")); }), 2);
    EXPECT_FALSE(std::filesystem::exists(file("new")));
    EXPECT_EQ(codeOf([&] { missing.copyTo(path("d")); }), 2);
    EXPECT_TRUE(std::filesystem::is_empty(file("d")));
}

TEST_F(OsFileTest, AMissingDirectoryOfTheTargetRaises)
{
    OsFile plain = made("f", "content");
    EXPECT_EQ(codeOf([&] { plain.copyTo(path("no/f")); }), onWindows ? 3 : 2);
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileTest, ADirectoryIsNotCopiedAsAFile)
{
    std::filesystem::create_directory(file("d"));
    OsFile folder(path("d"));
    EXPECT_THROW(folder.copyTo(path("g")), OsFileEx::ExInvalidPath);
    EXPECT_FALSE(std::filesystem::exists(file("g")));
    made("h", "content");
    EXPECT_THROW(folder.copyTo(path("h")), OsFileEx::ExInvalidPath);
    EXPECT_EQ(std::filesystem::file_size(file("h")), 7U);
}

TEST_F(OsFileTest, ACopyOntoItselfIsRefusedAndTheContentStays)
{
    OsFile plain = made("f", "content");
    std::filesystem::create_directory(file("d"));
    const std::string separator = OsFilePath::getSeparator();
    const std::string other = directory() + separator + "d" + separator + ".." + separator + "f";
    for (const std::string& target : {file("f"), other, directory()})
    {
        EXPECT_THROW(plain.copyTo(pathOf(target)), OsFileEx::ExInvalidPath) << target;
        EXPECT_EQ(readFile(file("f")), "content");
    }
    EXPECT_EQ(reasonOf<OsFileEx::ExInvalidPath>([&] { plain.copyTo(path("f")); }),
              "Invalid path: '" + file("f") + "'.");
    EXPECT_TRUE(std::filesystem::is_empty(file("d")));
}

TEST_F(OsFileTest, ACopyOntoAnotherNameOfTheSameFileIsRefused)
{
    OsFile plain = made("f", "content");
    std::filesystem::create_hard_link(file("f"), file("hard"));
    EXPECT_THROW(plain.copyTo(path("hard")), OsFileEx::ExInvalidPath);
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileLinuxTest, ACopyThroughALinkOntoItselfIsRefused)
{
    OsFile plain = made("f", "content");
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("f"), file("link"));
    std::filesystem::create_symlink(file("f"), file("d/f"));
    OsFile link(path("link"));
    EXPECT_THROW(plain.copyTo(path("link")), OsFileEx::ExInvalidPath);
    EXPECT_THROW(plain.copyTo(path("d")), OsFileEx::ExInvalidPath);
    EXPECT_THROW(link.copyTo(path("f")), OsFileEx::ExInvalidPath);
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileTest, ATargetThatIsReadOnlyIsRefusedAndStays)
{
    OsFile plain = made("f", "content");
    OsFile missing(path("missing"));
    writeFile(file("g"), "kept");
    std::filesystem::permissions(file("g"), std::filesystem::perms::owner_read);
    const bool isStopped = isStoppedByModes(file("g"));
    if (isStopped)
    {
        const std::string reason = "Invalid path: '" + file("g") + "'.";
        EXPECT_EQ(reasonOf<OsFileEx::ExPathNotWritable>([&] { plain.copyTo(path("g")); }), reason);
        // The target is looked at before the source.
        EXPECT_EQ(reasonOf<OsFileEx::ExPathNotWritable>([&] { missing.copyTo(path("g")); }),
                  reason);
        EXPECT_EQ(readFile(file("g")), "kept");
    }
    std::filesystem::permissions(file("g"), std::filesystem::perms::owner_all);
    if (!isStopped) GTEST_SKIP() << "Modes do not stop this user.";
}

TEST_F(OsFileLinuxTest, ARunningProgramIsNoTargetEvenForTheSystemsOwnUser)
{
    OsFile plain = made("f", "content");
    OsFile missing(path("missing"));
    for (OsFile* const source : {&plain, &missing})
        EXPECT_EQ(reasonOf<OsFileEx::ExPathNotWritable>([&] { source->copyTo("/proc/self/exe"); }),
                  "Invalid path: '/proc/self/exe'.");
}

TEST_F(OsFileTest, ATargetThatIsOpenElsewhereIsRefusedOnWindowsOnly)
{
    OsFile plain = made("f", "content");
    writeFile(file("g"), "kept");
    const OsFileReader reader(path("g"));
    const bool isRefused =
        !reasonOf<OsFileEx::ExPathNotWritable>([&] { plain.copyTo(path("g")); }).empty();
    EXPECT_EQ(isRefused, onWindows);
    EXPECT_EQ(readFile(file("g")), onWindows ? "kept" : "content");
}

TEST_F(OsFileLinuxTest, AFullDiskRaisesAndLeavesTheSource)
{
    for (const std::size_t size : {1U, 65536U, 200000U})
    {
        const std::string content = noise(size);
        OsFile plain = made("f", content);
        EXPECT_EQ(codeOf([&] { plain.copyTo("/dev/full"); }), 28);
        EXPECT_TRUE(readFile(file("f")) == content);
    }
    // Nothing fits even there.
    EXPECT_NO_THROW(made("empty", "").copyTo("/dev/full"));
}

TEST_F(OsFileLinuxTest, ANewCopyIsForOwnerAndGroupLessTheMask)
{
    OsFile plain = made("f", "content");
    std::filesystem::permissions(file("f"), std::filesystem::perms::all);
    {
        const ModeMaskGuard mask(0);
        plain.copyTo(path("g"));
        EXPECT_EQ(modeOf(file("g")), 0660U);
    }
    const ModeMaskGuard mask(0022);
    plain.copyTo(path("h"));
    EXPECT_EQ(modeOf(file("h")), 0640U);
}

TEST_F(OsFileLinuxTest, ACopyOntoAFileLeavesItsMode)
{
    OsFile plain = made("f", "content");
    writeFile(file("g"), "old");
    std::filesystem::permissions(file("g"), std::filesystem::perms{0604});
    plain.copyTo(path("g"));
    EXPECT_EQ(modeOf(file("g")), 0604U);
}

TEST_F(OsFileTest, NamesWithBlanksAndBytesBeyondLettersWork)
{
    // Legal on every platform, also at the beginning.
    for (const char* const name :
         {"a b", " a", "a  b.c d", "#%&'()+,-;=@[]^_`{}~!$", "..a", "a..b"})
    {
        OsFile plain(path(name));
        plain.create(usual, true);
        EXPECT_TRUE(std::filesystem::exists(file(name))) << name;
        writeFile(file(name), "content");
        EXPECT_EQ(plain.getSize(), 7U) << name;
        plain.copyTo(path("copy"));
        EXPECT_EQ(readFile(file("copy")), "content") << name;
        plain.renameTo(path("moved"));
        plain.renameTo(path(name));
        plain.remove();
        EXPECT_FALSE(std::filesystem::exists(file(name))) << name;
    }
}

TEST_F(OsFileLinuxTest, ANameHoldsEveryByteButTheSeparator)
{
    std::filesystem::create_directory(file("d"));
    for (int byte = 1; byte < 256; ++byte)
    {
        if (byte == '/') continue;
        const std::string name = std::string("x") + static_cast<char>(byte);
        OsFile plain = made(name, "content");
        EXPECT_EQ(plain.getSize(), 7U) << byte;
        EXPECT_TRUE(plain.isFile()) << byte;
        plain.copyTo(path("d"));
        EXPECT_EQ(readFile(file("d/" + name)), "content") << byte;
        plain.renameTo(path(name + "y"));
        plain.remove();
    }
}

TEST_F(OsFileLinuxTest, ANameMayHave255Bytes)
{
    const std::string name(255, 'x');
    OsFile plain(path(name));
    plain.create(usual, true);
    EXPECT_TRUE(plain.isFile());
    std::filesystem::create_directory(file("d"));
    plain.copyTo(path("d"));
    EXPECT_TRUE(std::filesystem::exists(file("d/" + name)));
    plain.renameTo(path(std::string(255, 'y')));
    plain.remove();
    // One more is too long.
    OsFile longer(path(name + "x"));
    EXPECT_FALSE(longer.exists());
    EXPECT_EQ(codeOf([&] { longer.create(usual, true); }), 36);
    EXPECT_EQ(codeOf([&] { longer.remove(); }), 36);
}

TEST_F(OsFileLinuxTest, PathsGoBeyondAThousandCharacters)
{
    std::string deep = directory();
    while (deep.size() < 1500)
    {
        deep += "/" + std::string(100, 'd');
        std::filesystem::create_directory(deep);
    }
    OsFile plain = fileOf(deep + "/f");
    plain.create(usual, true);
    writeFile(deep + "/f", "content");
    EXPECT_EQ(plain.getSize(), 7U);
    EXPECT_EQ(plain.getAccess(), 3);
    EXPECT_NO_THROW(plain.getOwner());
    EXPECT_NO_THROW(plain.getUnbufferedInfo());
    plain.copyTo(pathOf(deep + "/g"));
    EXPECT_EQ(readFile(deep + "/g"), "content");
    made("short", "short").copyTo(pathOf(deep));
    EXPECT_EQ(readFile(deep + "/short"), "short");
    // The base name is that of the resolved path, which has a limit.
    EXPECT_THROW(plain.copyTo(pathOf(directory())), ExSysErrorWindows);
    plain.renameTo(pathOf(deep + "/h"));
    EXPECT_EQ(plain.getPath().getChars(), deep + "/h");
    plain.remove();
    EXPECT_FALSE(std::filesystem::exists(deep + "/h"));
}

TEST_F(OsFileTest, ExcessivePathsRaiseAndNothingIsOverrun)
{
    OsFile plain = made("f", "content");
    for (const std::size_t size : {1023U, 1024U, 1025U, 4096U, 100000U})
    {
        const OsFilePath excessive = path(std::string(size, 'x'));
        OsFile longer(excessive);
        EXPECT_FALSE(longer.exists());
        EXPECT_EQ(longer.getAccess(), 0);
        EXPECT_THROW(longer.getSize(), OsFileEx::ExInvalidPath);
        EXPECT_THROW(longer.create(usual, false), ExSysErrorWindows);
        EXPECT_THROW(longer.remove(), ExSysErrorWindows);
        EXPECT_THROW(longer.renameTo(path("g")), ExSysErrorWindows);
        EXPECT_THROW(longer.copyTo(path("g")), ExSysErrorWindows);
        EXPECT_THROW(plain.renameTo(excessive), ExSysErrorWindows);
        EXPECT_THROW(plain.copyTo(excessive), ExSysErrorWindows);
        EXPECT_EQ(textOf(plain.getPath()), file("f"));
    }
    EXPECT_FALSE(std::filesystem::exists(file("g")));
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileTest, HandlesAreGivenBackHoweverItEnds)
{
    OsFile plain = made("f", "content");
    OsFile missing(path("missing"));
    const ToldFile gone(path("missing"), true);
    const OpenFile opened(path("f"));
    writeFile(file("g"), "content");
    std::filesystem::create_directories(file("d/f"));
    OsFile folder(path("d"));
    const std::size_t before = support::openHandles();
    for (int i = 0; i < 200; ++i)
    {
        for (const auto& [name, ask] : questions)
        {
            ask(plain);
            EXPECT_THROW(ask(missing), OsFileEx::ExInvalidPath);
            codeOf([&ask = ask, &gone] { ask(gone); });
        }
        plain.getAccess();
        missing.getAccess();
        EXPECT_THROW(plain.create(usual, true), OsFileEx::ExFileExists);
        EXPECT_THROW(missing.remove(), ExSysErrorWindows);
        EXPECT_THROW(plain.renameTo(path("g")), ExSysErrorWindows);
        EXPECT_THROW(plain.copyTo(path("f")), OsFileEx::ExInvalidPath);
        EXPECT_THROW(plain.copyTo(path("d")), ExSysErrorWindows);
        EXPECT_THROW(plain.copyTo(path("no/f")), ExSysErrorWindows);
        if (!onWindows)
        {
            EXPECT_THROW(plain.copyTo("/dev/full"), ExSysErrorWindows);
            EXPECT_THROW(plain.copyTo("/proc/self/exe"), OsFileEx::ExPathNotWritable);
        }
        EXPECT_THROW(missing.copyTo(path("g")), ExSysErrorWindows);
        EXPECT_THROW(folder.copyTo(path("g")), OsFileEx::ExInvalidPath);
        plain.copyTo(path("h"));
        opened.close(opened.open(3));
    }
    EXPECT_EQ(support::openHandles(), before);
}

} // namespace
