/// @file
/// Open descriptors; part of the library for Linux only. Internal to the library.

#ifndef ZU_BASE_OSDESCRIPTOR_H
#define ZU_BASE_OSDESCRIPTOR_H

namespace Zu
{

/// The same open file under a number that is none of the standard streams', which a process may
/// have been started without: what it then wrote to its standard output would land in the file.
/// Children do not inherit it. Negative, with `errno` set, if there is no such number any more; a
/// negative number stays as it is.
int osAboveStandard(int number);

/// Closes what it holds; a negative number is nothing.
class OsDescriptor
{
public:
    explicit OsDescriptor(int number) : _number(number) {}
    OsDescriptor(const OsDescriptor&) = delete;
    OsDescriptor& operator=(const OsDescriptor&) = delete;
    ~OsDescriptor();

    int get() const
    {
        return _number;
    }

    /// Gives it to the caller, who closes it.
    int release()
    {
        const int number = _number;
        _number = -1;
        return number;
    }

private:
    int _number;
};

} // namespace Zu

#endif
