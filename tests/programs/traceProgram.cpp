// Tracing in a whole process. The words of the command line are commands that are carried out in
// order; a test compares what they print.

#include "base/exInternalError.h"
#include "base/trace.h"
#include "base/traceLevel.h"
#include "base/traceManager.h"
#include "base/traceStatement.h"

#include "support/platform.h"

#include <deque>
#include <iostream>
#include <map>
#include <string>
#include <vector>

ZU_TRACE_LEVEL(Early);
ZU_TRACE_LEVEL(Main);

namespace
{

std::deque<std::string> words;

std::string nextWord()
{
    const std::string word = words.front();
    words.pop_front();
    return word;
}

void say(const std::string& text)
{
    std::cout << text << std::endl;
}

// Traces outside main().
class EarlyAndLate
{
public:
    EarlyAndLate()
    {
        ZU_TRACE(Early, "before main");
    }
    EarlyAndLate(const EarlyAndLate&) = delete;
    EarlyAndLate& operator=(const EarlyAndLate&) = delete;

    ~EarlyAndLate()
    {
        ZU_TRACE(Early, "after main");
    }
};

const EarlyAndLate theEarlyAndLate;

// Prints which manager a line reached.
class Telling : public Zu::TraceManager
{
public:
    explicit Telling(int priority) : TraceManager(priority), _priority(priority) {}

    Zu::Trace& getTrace() override
    {
        return _trace;
    }

    void print(const char* text) const override
    {
        say("manager " + std::to_string(_priority) + ": " + text);
    }

private:
    Zu::Trace _trace;
    int _priority;
};

// They live until the process ends.
std::vector<Telling*>& managers = *new std::vector<Telling*>;

void setOptions()
{
    try
    {
        Zu::Trace::setOptions(nextWord().c_str());
    }
    catch (const Zu::ExInternalError& exception)
    {
        say(exception.getReason());
    }
}

// Registers the level, like a source that is initialised late.
void showState()
{
    const std::string name = nextWord();
    const Zu::TraceLevel* const level = Zu::Trace::registerLevel(name.c_str(), "dir/late.cpp");
    say(name + (Zu::Trace::isEnabled(*level) ? " on" : " off"));
}

// A statement that is off does not evaluate its operands, but the word must be consumed in any
// case.
void traceText()
{
    const std::string text = nextWord();
    ZU_TRACE(Main, text);
}

void traceEarlyText()
{
    const std::string text = nextWord();
    ZU_TRACE(Early, text);
}

void traceScopes()
{
    ZU_TRACE_SCOPE(Main, "outer");
    ZU_TRACE_SCOPE(Main, "inner");
    traceText();
}

void reportException()
{
    const Zu::ExInternalError exception("dir/thrown.cpp", 7, nextWord().c_str());
    Zu::TraceManager::getInstance().getTrace().printException(exception, "dir/thrown.cpp", 7);
}

const std::map<std::string, void (*)()> commands = {
    {"early", traceEarlyText},
    {"exception", reportException},
    {"levels", [] { Zu::Trace::printLevels(std::cout); }},
    // Stays until the process ends.
    {"manager", [] { managers.push_back(new Telling(std::stoi(nextWord()))); }},
    {"options", setOptions},
    {"pid", [] { say(std::to_string(support::processId())); }},
    {"scopes", traceScopes},
    {"state", showState},
    {"trace", traceText},
};

} // namespace

int main(int argc, char** argv)
{
    words.assign(argv + 1, argv + argc);
    say("main");
    while (!words.empty()) commands.at(nextWord())();
    say("end of main");
    return 0;
}
