/// @file
/// The root of all exceptions of the library.

#ifndef ZU_BASE_EXBASE_H
#define ZU_BASE_EXBASE_H

#include "baseApi.h"

#include <cstddef>

namespace Zu
{

/// Where an exception was raised and why.
///
/// Everything is kept inline: the class allocates nothing and its objects copy as plain values.
/// A concrete exception derives from a family root (InEx, OsFileEx, ...) and nearly always also
/// from a standard exception, so that a handler for the standard types prints the same reason.
///
/// Thread-safety: objects share nothing, but getDetailedReason() writes a cache in the object, so
/// one object is not to be read by two threads at once.
class ZU_BASE_API ExBase
{
public:
    /// `file` is cut to 127 characters; null leaves the name empty.
    ExBase(const char* file, int line);

    /// @{
    /// A copy has the place and the texts of its source.
    ExBase(const ExBase& other);
    ExBase& operator=(const ExBase& other);
    /// @}

    /// The message, at most 1023 characters; owned by the object.
    virtual const char* getReason() const;

    /// "[Exception Type = ..., File = ..., Line=...]", a line feed and the reason, at most 1023
    /// characters; owned by the object. It is made at the first call and kept: a reason that
    /// changes later does not show in it, and a copy takes the text with it.
    virtual const char* getDetailedReason() const;

    virtual ~ExBase();

    /// A heap copy of the same dynamic type, owned by the caller.
    virtual ExBase* clone() const = 0;

    /// The source file of the raise.
    const char* getFileName() const;

    /// The source line of the raise.
    int getLineNo() const;

protected:
    /// Appends `text` to the reason. What does not fit is cut at the end; null changes nothing.
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
