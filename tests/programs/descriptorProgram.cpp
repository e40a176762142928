// Opens everything that the library keeps open, in a process that may have been started without
// standard streams, and writes the numbers of the descriptors to the file named by the first word.
// With the second word "close" it closes the standard streams itself.

#include "app/lgService.h"
#include "base/base.h"

#include "support/platform.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

ZU_DEFINE_LOG_GROUP(Descriptors);

namespace
{

using Numbers = std::vector<int>;

// Looks at the process while a directory is being read.
class LookWithin : public Zu::OsFileFilter
{
public:
    bool filter(const Zu::OsFilePath&) const override
    {
        _open = support::openDescriptors();
        return true;
    }

    mutable Numbers _open;
};

std::string textOf(const char* what, const Numbers& numbers)
{
    std::string text = what;
    for (const int number : numbers) text += " " + std::to_string(number);
    return text + "\n";
}

void work(const char* reportName, const Numbers& before)
{
    const Zu::LgService service;
    ZU_START_LOG_GROUP("Descriptors", Descriptors);
    const Zu::OsFilePath report(reportName);
    Zu::OsFileWriter writer(report, {}, false);
    const Zu::OsFileReader reader(report);
    const std::unique_ptr<Zu::PeriodicTimer> timer(Zu::PeriodicTimer::create(0.01));
    const std::unique_ptr<Zu::LgInterProcessLock> lock(
        Zu::LgInterProcessLock::create(Zu::OsEnv::getVariable("DESCRIPTOR_LOCK")));
    std::cout << "loose text" << std::endl;
    std::cerr << "loose text" << std::endl;
    ZU_LOG_WARNING(Descriptors, "told");
    const LookWithin look;
    Zu::OsDirectory(report.getDirectoryName()).getChildrenPath(Zu::OsFileTypes::PathFull, look);

    Numbers fresh = look._open;
    std::erase_if(fresh, [&](int number)
                  { return std::find(before.begin(), before.end(), number) != before.end(); });
    Numbers inherited = fresh;
    std::erase_if(inherited, [](int number) { return !support::isInherited(number); });
    const std::string text =
        textOf("before", before) + textOf("fresh", fresh) + textOf("inherited", inherited);
    std::uint64_t written = 0;
    Zu::OsFileTools::writeAll(writer, text, written);
    ZU_STOP_LOG_GROUP(Descriptors);
}

} // namespace

int main(int argc, const char* const* argv)
{
    const std::string report = argc > 1 ? argv[1] : "";
    if (argc > 2 && argv[2] == std::string("close")) support::closeStandardStreams();
    const Numbers before = support::openDescriptors();
    const Zu::InInitGuard guard(argc, argv);
    work(report.c_str(), before);
    return 0;
}
