// Build records in a whole process. The words of the command line are commands that are carried out
// in order; a test compares what they print. With BUILD_INFO_CLIENT set, the program's own package
// registers a record of the library's API, or, if its value is "mismatch", one of another version.

#include "base/dbgBuildInfoEx.h"
#include "base/dbgBuildInfoMgr.h"
#include "base/dbgBuildInfoUtil.h"
#include "base/inInit.h"
#include "base/inInitGuard.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/lgReader.h"
#include "base/lgRegistry.h"
#include "base/lgTypes.h"
#include "base/osEnv.h"
#include "base/osSharedLibEx.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <iostream>
#include <map>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using Zu::DbgBuildInfo;
using Zu::DbgBuildInfoEx;
using Zu::DbgBuildInfoMgr;
using Zu::DbgBuildInfoUtil;
using Zu::LgLog;
using Zu::LgQueue;
namespace LgTypes = Zu::LgTypes;

std::deque<std::string> words;

// The one queue of the program, which ends with the process.
LgQueue* theQueue = nullptr;

std::string nextWord()
{
    const std::string word = words.front();
    words.pop_front();
    return word;
}

int nextNumber()
{
    return std::stoi(nextWord());
}

void say(const std::string& text)
{
    std::cout << text << std::endl;
}

// A record with its own texts, which shows whether the verbose form was requested.
class Record : public DbgBuildInfo
{
public:
    Record(const std::string& api, int major, int minor, const std::string& library,
           const std::string& stamp)
        : _api(api), _major(major), _minor(minor)
    {
        // First the plain forms, then the verbose ones.
        const std::string texts[] = {library, stamp, "date", "configuration", "builder", "notes"};
        for (const std::string& text : texts) _texts.push_back(text);
        for (const std::string& text : texts) _texts.push_back("long " + text);
        ++_living;
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    ~Record() override
    {
        --_living;
    }

    const char* getApiName() const override
    {
        return _api.c_str();
    }
    int getMajorVersion() const override
    {
        return _major;
    }
    int getMinorVersion() const override
    {
        return _minor;
    }
    const char* getVersionLabel() const override
    {
        return "beta";
    }
    const char* getLibraryName(bool verbose) const override
    {
        return text(0, verbose);
    }
    const char* getBuildStamp(bool verbose) const override
    {
        return text(1, verbose);
    }
    const char* getBuildDate(bool verbose) const override
    {
        return text(2, verbose);
    }
    const char* getBuildConfiguration(bool verbose) const override
    {
        return text(3, verbose);
    }
    const char* getBuiltBy(bool verbose) const override
    {
        return text(4, verbose);
    }
    const char* getBuildNotes(bool verbose) const override
    {
        return text(5, verbose);
    }

    static inline int _living = 0;

private:
    const char* text(std::size_t number, bool verbose) const
    {
        return _texts[number + (verbose ? _texts.size() / 2 : 0)].c_str();
    }

    std::string _api;
    int _major;
    int _minor;
    std::vector<std::string> _texts;
};

Zu::ObjPtr<DbgBuildInfo> recordOf(const std::string& api, int major, int minor,
                                  const std::string& library, const std::string& stamp)
{
    return Zu::ObjPtr<DbgBuildInfo>(new Record(api, major, minor, library, stamp));
}

// The next five words as a record.
Zu::ObjPtr<DbgBuildInfo> nextRecord()
{
    const std::string api = nextWord();
    const int major = nextNumber();
    const int minor = nextNumber();
    const std::string library = nextWord();
    return recordOf(api, major, minor, library, nextWord());
}

struct clientTag
{
};

} // namespace

template <> Zu::InInit<clientTag>::InInit() : InPackageInit("client")
{
    registerPackage();
    addDependency(InInit<ZuInit::base>::getType());
}

template <> void Zu::InInit<clientTag>::performInitialize()
{
    const char* const mode = Zu::OsEnv::getVariable("BUILD_INFO_CLIENT");
    if (!mode) return;
    say("client starts");
    const int minor = std::string(mode) == "mismatch" ? 3 : 2;
    DbgBuildInfoUtil::registerInfo(recordOf("Corvane", 0, minor, "libZUclient", "P. 187"));
    say("client is up");
}

template <> void Zu::InInit<clientTag>::performFinalize() {}

namespace
{

Zu::InInit<clientTag> thePackage;

// Runs work and prints the exception that it raises, if any.
void saying(const std::function<void()>& work)
{
    try
    {
        work();
    }
    catch (const DbgBuildInfoEx::ExVersionMismatch& exception)
    {
        say(std::string("ExVersionMismatch: ") + exception.what());
    }
    catch (const DbgBuildInfoEx::ExBuildStampMismatch& exception)
    {
        say(std::string("ExBuildStampMismatch: ") + exception.what());
    }
    catch (const DbgBuildInfoEx::ExAppAlreadyRegistered& exception)
    {
        say(std::string("ExAppAlreadyRegistered: ") + exception.what());
    }
    catch (const DbgBuildInfoEx::ExAppNotRegistered& exception)
    {
        say(std::string("ExAppNotRegistered: ") + exception.what());
    }
    catch (const Zu::OsSharedLibEx::ExCantOpenLib& exception)
    {
        say(std::string("ExCantOpenLib: ") + exception.what());
    }
    catch (const Zu::OsSharedLibEx::ExFunctionNotFound& exception)
    {
        say(std::string("ExFunctionNotFound: ") + exception.what());
    }
    catch (const std::exception& exception)
    {
        say(std::string("std: ") + exception.what());
    }
}

void runWords();

// The words up to "stop" are carried out while the packages are up.
void start()
{
    saying(
        []
        {
            const char* const names[] = {"buildInfoProgram", nullptr};
            int count = 1;
            const char* const* argv = names;
            const Zu::InInitGuard guard(count, argv);
            runWords();
        });
}

void add()
{
    saying([] { DbgBuildInfoUtil::registerInfo(nextRecord()); });
}

void addWith()
{
    const bool validateVersions = nextNumber() != 0;
    const bool checkStamps = nextNumber() != 0;
    saying([&] { DbgBuildInfoMgr::registerInfo(nextRecord(), validateVersions, checkStamps); });
}

void addMany()
{
    for (int number = nextNumber(); number > 0; --number)
        DbgBuildInfoUtil::registerInfo(
            recordOf("Api" + std::to_string(number), number, 0, "lib", "stamp"));
}

void addApp()
{
    saying([] { DbgBuildInfoMgr::registerAppInfo(nextRecord()); });
}

void showApp()
{
    saying([] { say(std::string("application ") + DbgBuildInfoMgr::getAppInfo().getApiName()); });
}

void print(std::ostream& (*printer)(std::ostream&, bool))
{
    const bool verbose = nextWord() == "verbose";
    if (&printer(std::cout, verbose) != &std::cout) say("another stream");
}

void makeQueue()
{
    theQueue = new LgQueue(0xabc);
    LgLog::getRegistry()->registerQueue(theQueue);
    LgLog::setQueueFunction([] { return theQueue; });
    LgLog::setLoggerActivation(true);
}

// All waiting events of the queue, with their levels.
void showEntries()
{
    std::vector<char> text(32768);
    while (!theQueue->isEmpty())
    {
        const LgQueue::Entry& entry = theQueue->readEntry();
        if (entry.isOverflowEntry())
        {
            say("lost");
        }
        else
        {
            theQueue->getStream() >> text.data();
            say(std::string(LgTypes::levelToString(entry.getLevel())) + ": " + text.data());
        }
        theQueue->removeEntry();
    }
}

// Leaves no room for another event.
void fillQueue()
{
    while (theQueue->reserveEntry(LgTypes::Warning))
    {
        theQueue->getStream() << "x" << Zu::ends;
        theQueue->addEntry();
    }
    say("lost " + std::to_string(theQueue->getLostCount()));
}

void drainQueue()
{
    std::vector<char> text(32768);
    while (!theQueue->isEmpty())
    {
        if (!theQueue->readEntry().isOverflowEntry()) theQueue->getStream() >> text.data();
        if (text[0] != 'x') say("entry");
        theQueue->removeEntry();
    }
    say("lost " + std::to_string(theQueue->getLostCount()));
}

void loadModule()
{
    saying([] { DbgBuildInfoUtil::registerModule(nextWord().c_str()); });
}

const std::map<std::string, void (*)()> commands = {
    {"add", add},
    {"addMany", addMany},
    {"addWith", addWith},
    {"app", addApp},
    {"checkStamps", [] { DbgBuildInfoUtil::setCheckStamps(nextNumber() != 0); }},
    {"deactivate", [] { LgLog::setLoggerActivation(false); }},
    {"drain", drainQueue},
    {"entries", showEntries},
    {"fill", fillQueue},
    {"flush", [] { Zu::LgReader().flushAll(); }},
    {"living", [] { say("living " + std::to_string(Record::_living)); }},
    {"module", loadModule},
    {"print", [] { print(DbgBuildInfoMgr::printBuildInfo); }},
    {"printApp", [] { print(DbgBuildInfoMgr::printAppInfo); }},
    {"queue", makeQueue},
    {"showApp", showApp},
    {"start", start},
    {"validate", [] { DbgBuildInfoUtil::setValidateVersions(nextNumber() != 0); }},
};

// Up to "stop", which ends the innermost start.
void runWords()
{
    while (!words.empty())
    {
        const std::string word = nextWord();
        if (word == "stop") return;
        commands.at(word)();
    }
}

} // namespace

int main(int argc, char** argv)
{
    words.assign(argv + 1, argv + argc);
    runWords();
    say("end of main");
    return 0;
}
