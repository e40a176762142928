/// @file
/// The root of all exceptions of the library.

#ifndef ZU_BASE_EXBASE_H
#define ZU_BASE_EXBASE_H

#include "baseApi.h"

#include <cstddef>

namespace Zu
{

/// Records where an exception was raised and why.
///
/// Everything is stored inline: the class allocates nothing and its objects copy as plain values. A
/// concrete exception derives from a family root (InEx, OsFileEx, ...) and nearly always also from
/// a standard exception, so that a handler for the standard types prints the same reason.
///
/// Thread-safety: objects share nothing, but getDetailedReason() writes a cache in the object, so
/// two threads must not read the same object at once.
class ZU_BASE_API ExBase
{
public:
    /// `file` is truncated to 127 characters; null leaves the name empty.
    ExBase(const char* file, int line);

    /// @{
    /// A copy has the source location and the texts of the original.
    ExBase(const ExBase& other);
    ExBase& operator=(const ExBase& other);
    /// @}

    /// The message, at most 1023 characters; owned by the object.
    virtual const char* getReason() const;

    /// "[Exception Type = ..., File = ..., Line=...]", a line feed and the reason, at most 1023
    /// characters; owned by the object. It is composed at the first call and cached: it does not
    /// reflect a reason that changes later, and a copy includes the cached text.
    virtual const char* getDetailedReason() const;

    virtual ~ExBase();

    /// A heap copy of the same dynamic type, owned by the caller.
    virtual ExBase* clone() const = 0;

    /// The source file in which it was raised.
    const char* getFileName() const;

    /// The source line at which it was raised.
    int getLineNo() const;

protected:
    /// Appends `text` to the reason. Text that does not fit is truncated; null changes nothing.
    void setReason(const char* text);

private:
    static constexpr std::size_t REASON_SIZE = 1024;
    static constexpr std::size_t FILE_NAME_SIZE = 128;

    void setFileName(const char* name);
    void copyTexts(const ExBase& other);

    mutable char _detailedReason[REASON_SIZE];
    char _reason[REASON_SIZE];
    char _fileName[FILE_NAME_SIZE];
    int _lineNo;
};

} // namespace Zu

#endif
