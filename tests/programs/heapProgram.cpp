// The settings of the heap and the loaded libraries in a whole process. The first word selects what
// to show.

#include "base/hmHeapMgr.h"
#include "base/inInitGuard.h"
#include "base/inSingletonEx.h"
#include "base/lmLibraries.h"
#include "base/objPtr.h"
#include "base/osFilePath.h"
#include "base/osSharedLib.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Zu::HmHeapMgr;

// One stream for all, as the report of libraries goes through it.
void say(const std::string& text)
{
    std::printf("%s\n", text.c_str());
}

void show(const char* name, unsigned long value)
{
    say(std::string(name) + " " + std::to_string(value));
}

void showSettings()
{
    const HmHeapMgr& manager = HmHeapMgr::getInstance();
    show("level", manager.getSafetyLevel());
    show("prompt", manager.isOutput2Prompt());
    show("continue", manager.isContinueOnError());
    show("handler", manager.isUseDefaultErrorHandler());
    show("info", manager.isDumpHeapInfo());
    show("memory", manager.isCheckAllMemory());
    show("leaks", manager.isDumpLeaks());
    show("defer", manager.isDoDeferFreeing());
    show("length", manager.getDeferQueueLen());
    show("threshold", manager.getDeferSizeThreshold());
    show("frequency", manager.getCheckFrequency());
}

void showInstance(const char* when)
{
    try
    {
        HmHeapMgr& manager = HmHeapMgr::getInstance();
        say(std::string(when) + ": " + (&manager == &HmHeapMgr::getInstance() ? "one" : "several"));
    }
    catch (const Zu::InSingletonEx::ExNotInitialized& exception)
    {
        say(std::string(when) + ": " + exception.what());
    }
}

// The report, and then the list in a form from which a test builds the report.
void showLibraries()
{
    std::fflush(stdout);
    Zu::LmLibraries::dumpList();
    std::printf("\n=====\n");
    for (const Zu::LmLibrary& library : Zu::LmLibraries::getList())
    {
        std::printf("library %p %s\n", library._address, library._path.get());
        for (const Zu::LmBlock& block : library._blocks)
            std::printf("block %p %llu %u\n", block._address,
                        static_cast<unsigned long long>(block._size),
                        static_cast<unsigned int>(block._flags));
    }
}

// The path of each library that contains this text.
void showPathsWith(const char* part)
{
    for (const Zu::LmLibrary& library : Zu::LmLibraries::getList())
        if (std::string_view(library._path.get()).find(part) != std::string_view::npos)
            say(library._path.get());
}

// Twice, to detect a list that is not emptied.
void showPathsOfModule(const char* module, const char* part)
{
    const Zu::ObjPtr<Zu::OsSharedLib> library(Zu::OsSharedLib::open(Zu::OsFilePath(module)));
    showPathsWith(part);
    say("again");
    showPathsWith(part);
}

void showPathsOfRemovedModule(const char* module, const char* part)
{
    const Zu::ObjPtr<Zu::OsSharedLib> library(Zu::OsSharedLib::open(Zu::OsFilePath(module)));
    std::filesystem::remove(module);
    showPathsWith(part);
}

void run(const std::vector<std::string>& words)
{
    if (words[1] == "libraries") return showLibraries();
    if (words[1] == "module") return showPathsOfModule(words[2].c_str(), words[3].c_str());
    if (words[1] == "removed") return showPathsOfRemovedModule(words[2].c_str(), words[3].c_str());
    showInstance("before");
    {
        const char* const names[] = {"heapProgram", nullptr};
        int count = 1;
        const char* const* argv = names;
        const Zu::InInitGuard guard(count, argv);
        say("started");
        if (words[1] == "settings") showSettings();
        if (words[1] == "instance") showInstance("inside");
    }
    showInstance("after");
}

} // namespace

int main(int argc, char** argv)
{
    run(std::vector<std::string>(argv, argv + argc));
    return 0;
}
