#include "zulog/zlShip.h"

#include "zulog/zlSyslog.h"

#include "logTexts.h"
#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using logTexts::ORIGIN;
using logTexts::tickLine;
using Texts = std::vector<std::string>;
using Zu::ZlDestination;
using Zu::ZlShipper;

// Takes messages, or fails as it is told.
class Receiver : public Zu::ZlTransport
{
public:
    Result deliver(std::span<const std::string> messages) override
    {
        _largest = std::max(_largest, messages.size());
        const std::size_t taken = std::min(messages.size(), _most);
        for (const std::string& message : messages.subspan(0, taken))
            _messages.push_back(message.substr(message.find("] ") + 2));
        if (_isLost)
        {
            // It has them, but nobody hears of it.
            _isLost = false;
            return {0, "the connection broke"};
        }
        return {taken, taken == messages.size() ? "" : "it is full"};
    }

    void finish() override {}

    Texts _messages;
    std::size_t _most = static_cast<std::size_t>(-1);
    std::size_t _largest = 0;
    bool _isLost = false;
};

class ZlShip : public testing::Test
{
protected:
    ZlShip()
    {
        options._show._words = {log};
        options._destinationText = "tcp://there:1";
        options._cursorFile = dir.file("cursor");
    }

    static std::string line(std::uint32_t number)
    {
        return tickLine(number, "Warning: A " + std::to_string(number));
    }

    static Texts numbers(int from, int to)
    {
        Texts texts;
        for (int i = from; i < to; ++i) texts.push_back(std::to_string(i));
        return texts;
    }

    void append(const std::string& text) const
    {
        std::ofstream(log, std::ios::binary | std::ios::app) << text;
    }

    // A process that ships all that is there, or ends after so many steps.
    void ship(int steps = 1000)
    {
        Zu::ZlReports reports(reported);
        Zu::ZlCursorFile file(options._cursorFile);
        Zu::ZlSyslog form({});
        ZlShipper shipper(options, receiver, form, file, reports);
        bool isReleased = false;
        for (int i = 0; i < steps; ++i)
        {
            const ZlShipper::Outcome outcome = shipper.step();
            if (outcome != ZlShipper::Outcome::Idle) continue;
            if (isReleased) return;
            shipper.release(true);
            isReleased = true;
        }
    }

    support::TempDir dir;
    const std::string log = dir.file("a.log");
    Zu::ZlShipOptions options;
    Receiver receiver;
    std::ostringstream reported;
};

TEST_F(ZlShip, GoesOnWhereTheLastOneHasEnded)
{
    append(ORIGIN + line(1) + line(2));
    ship();
    EXPECT_EQ(receiver._messages, Texts({"1", "2"}));
    ship();
    append(line(3));
    ship();
    EXPECT_EQ(receiver._messages, Texts({"1", "2", "3"}));
    EXPECT_EQ(reported.str(), "");
}

TEST_F(ZlShip, GoesOnAcrossRotations)
{
    append(ORIGIN + line(1));
    ship();
    append(line(2));
    std::filesystem::rename(log, log + ".1");
    append(ORIGIN + line(3));
    std::filesystem::rename(log + ".1", log + ".2");
    std::filesystem::rename(log, log + ".1");
    append(ORIGIN + line(4));
    ship();
    EXPECT_EQ(receiver._messages, numbers(1, 5));
    EXPECT_EQ(reported.str(), "");
}

TEST_F(ZlShip, AFileThatIsGoneIsReportedAndTheRestFollows)
{
    append(ORIGIN + line(1));
    ship();
    std::filesystem::remove(log);
    append(ORIGIN + "x" + line(2) + line(3));
    ship();
    EXPECT_NE(reported.str().find("lines may be missing"), std::string::npos) << reported.str();
    EXPECT_EQ(receiver._messages.back(), "3");
}

// It begins as before, and is longer than the place already.
TEST_F(ZlShip, AFileThatWasWrittenAnewBetweenTwoShippersIsShippedFromItsBeginning)
{
    std::string head = ORIGIN;
    while (head.size() < Zu::ZlPlace::LARGEST_HEAD) head += line(0);
    append(head + line(1) + line(2));
    ship();
    receiver._messages.clear();
    std::filesystem::resize_file(log, 0);
    append(head + line(3) + line(4) + line(5));
    ship();
    ASSERT_GE(receiver._messages.size(), 4U);
    EXPECT_EQ(Texts(receiver._messages.end() - 4, receiver._messages.end()),
              Texts({"0", "3", "4", "5"}));
    EXPECT_NE(reported.str().find("lines may be missing"), std::string::npos) << reported.str();
    receiver._messages.clear();
    append(line(6));
    ship();
    EXPECT_EQ(receiver._messages, Texts({"6"}));
}

TEST_F(ZlShip, WhatWasNotTakenComesAgainInOrder)
{
    std::string text = ORIGIN;
    for (std::uint32_t i = 0; i < 2500; ++i) text += line(i);
    append(text);
    receiver._most = 700;
    ship();
    EXPECT_EQ(receiver._messages, numbers(0, 2500));
    EXPECT_EQ(receiver._largest, ZlShipper::MOST_MESSAGES);
    // Once when it fails, and once when it works again.
    EXPECT_NE(reported.str().find("tcp://there:1: it is full; this is tried again\n"),
              std::string::npos);
    EXPECT_NE(reported.str().find("tcp://there:1 works again\n"), std::string::npos);
}

// However often the shipper is killed, and deliveries are lost: nothing is missing, and at most a
// batch for each of these comes twice.
TEST_F(ZlShip, NothingIsLostWhenItIsKilled)
{
    constexpr int LINES = 20000;
    std::string text = ORIGIN;
    for (int i = 0; i < LINES; ++i) text += line(static_cast<std::uint32_t>(i));
    append(text);
    std::mt19937 random(20261123);
    std::size_t failures = 0;
    for (int i = 0; i < 12; ++i)
    {
        receiver._most = 1 + random() % 1500;
        receiver._isLost = random() % 2 == 0;
        failures += receiver._isLost;
        ship(1 + static_cast<int>(random() % 3));
    }
    receiver._most = static_cast<std::size_t>(-1);
    ship();
    const Texts expected = numbers(0, LINES);
    EXPECT_EQ(std::set<std::string>(receiver._messages.begin(), receiver._messages.end()),
              std::set<std::string>(expected.begin(), expected.end()));
    EXPECT_LE(receiver._messages.size(), LINES + failures * ZlShipper::MOST_MESSAGES);
    EXPECT_GT(failures, 0U);
}

TEST_F(ZlShip, ShipsWhatIsSelectedAndMergesLogs)
{
    const std::string other = dir.file("b.log");
    append(ORIGIN + line(1) + tickLine(3, "Tracing: A 3") + line(5));
    support::writeFile(other, ORIGIN + line(2) + line(4));
    options._show._words = {dir.path()};
    options._show._selection._levels = *Zu::zlParseLevels("Warning");
    ship();
    EXPECT_EQ(receiver._messages, Texts({"1", "2", "4", "5"}));
}

TEST_F(ZlShip, ACursorIsForOneDestination)
{
    append(ORIGIN + line(1));
    ship();
    options._destinationText = "tcp://elsewhere:1";
    try
    {
        ship();
        ADD_FAILURE();
    }
    catch (const Zu::ZlError& error)
    {
        EXPECT_NE(std::string(error.what())
                      .find("is the cursor for tcp://there:1; each destination has one of its own"),
                  std::string::npos)
            << error.what();
    }
}

struct Destination
{
    const char* _text;
    ZlDestination::Kind _kind;
    const char* _host;
    const char* _port;
    const char* _path;
};

constexpr Destination DESTINATIONS[] = {
    {"relp://host:20514", ZlDestination::Kind::Relp, "host", "20514", ""},
    {"tcp://10.0.0.1:601", ZlDestination::Kind::Tcp, "10.0.0.1", "601", ""},
    {"tcp://[::1]:65535", ZlDestination::Kind::Tcp, "::1", "65535", ""},
    {"journal:", ZlDestination::Kind::Journal, "", "", ""},
    {"journal:/run/socket", ZlDestination::Kind::Journal, "", "", "/run/socket"},
};

TEST_F(ZlShip, ReadsDestinations)
{
    for (const Destination& row : DESTINATIONS)
    {
        SCOPED_TRACE(row._text);
        const auto destination = Zu::zlParseDestination(row._text);
        ASSERT_TRUE(destination);
        EXPECT_EQ(destination->_kind, row._kind);
        EXPECT_EQ(destination->_host, row._host);
        EXPECT_EQ(destination->_port, row._port);
        EXPECT_EQ(destination->_path, row._path);
    }
    for (const char* const text :
         {"", "host:1", "udp://host:1", "tcp://host", "tcp://:1", "tcp://host:0",
          "tcp://host:65536", "tcp://host:1/x", "tcp://::1:5", "tcp://[]:1", "relp://host:port",
          "RELP://host:1"})
        EXPECT_FALSE(Zu::zlParseDestination(text)) << text;
}

TEST_F(ZlShip, TheProgramRefusesWhatItCannotUse)
{
    const support::ProgramResult words =
        support::runProgram("zulog", {"ship", "--to", "host", "--cursor", "c", log});
    EXPECT_EQ(words.exitCode, 2);
    EXPECT_NE(words.err.find("expected relp://HOST:PORT, tcp://HOST:PORT, journal:"),
              std::string::npos)
        << words.err;
    EXPECT_EQ(support::runProgram("zulog", {"ship", "--to", "tcp://a:1", log}).exitCode, 2);
    EXPECT_EQ(
        support::runProgram("zulog", {"ship", "--to", "tcp://a:1", "--cursor", "c", "-"}).exitCode,
        2);
}

} // namespace
