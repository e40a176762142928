// Lists a directory tree, copies it, and compares the copy: copyTree source target.
#include "base/base.h"
#include <cstdint>
#include <iostream>

namespace
{

struct Account
{
    int _directories = 0;
    int _files = 0;
    std::uint64_t _bytes = 0;
    int _differences = 0;
};

// Walks through a tree and its copy, side by side.
void compare(const Zu::OsFilePath& source, const Zu::OsFilePath& copy, Account& account)
{
    const Zu::ObjPtr<Zu::Vector<Zu::OsFilePath>> names = Zu::OsFileTools::getSortedChildrenPath(
        Zu::OsDirectory(source), Zu::OsFileTypes::PathRelative, Zu::OsPassThroughFilter());
    for (const Zu::OsFilePath& name : *names)
    {
        const Zu::OsFilePath child = source + name;
        if (Zu::OsFile(child).isDirectory())
        {
            ++account._directories;
            compare(child, copy + name, account);
            continue;
        }
        const std::uint64_t size = Zu::OsFileTools::getSize64(child);
        const bool isSame = Zu::OsFileTools::haveSameContent(child, copy + name);
        ++account._files;
        account._bytes += size;
        account._differences += isSame ? 0 : 1;
        std::cout << child.getChars() << ", " << size << " bytes" << (isSame ? "" : ", DIFFERENT")
                  << "\n";
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::cerr << "usage: copyTree <directory> <new directory>\n";
        return 2;
    }
    try
    {
        const Zu::OsFilePath source(argv[1]);
        const Zu::OsFilePath target(argv[2]);
        Zu::OsDirectory(source).copyTo(target);
        Account account;
        compare(source, target, account);
        std::cout << account._directories << " directories, " << account._files << " files, "
                  << account._bytes << " bytes, " << account._differences << " differences\n";
        return account._differences == 0 ? 0 : 1;
    }
    catch (const Zu::ExBase& exception)
    {
        std::cerr << "copyTree: " << exception.getReason() << "\n";
        return 1;
    }
}
