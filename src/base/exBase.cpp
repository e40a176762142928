#include "base/exBase.h"

#include "base/typeName.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <typeinfo>

namespace Zu
{

namespace
{

// Appends as much of the text as fits into the buffer with its terminator.
template <std::size_t Size> void appendCut(char (&buffer)[Size], const char* text)
{
    const std::size_t used = std::strlen(buffer);
    const std::size_t taken = std::min(std::strlen(text), Size - 1 - used);
    std::memcpy(buffer + used, text, taken);
    buffer[used + taken] = '\0';
}

} // namespace

ExBase::ExBase(const char* file, int line) : _lineNo(line)
{
    _detailedReason[0] = '\0';
    _reason[0] = '\0';
    _fileName[0] = '\0';
    setFileName(file);
}

ExBase::ExBase(const ExBase& other) : _lineNo(other._lineNo)
{
    copyTexts(other);
}

ExBase& ExBase::operator=(const ExBase& other)
{
    if (this == &other) return *this;
    _lineNo = other._lineNo;
    copyTexts(other);
    return *this;
}

ExBase::~ExBase() = default;

const char* ExBase::getReason() const
{
    return _reason;
}

const char* ExBase::getDetailedReason() const
{
    if (_detailedReason[0] == '\0')
    {
        std::snprintf(_detailedReason, sizeof _detailedReason,
                      "[Exception Type = %s, File = %s, Line=%d]\n", typeName(typeid(*this)),
                      _fileName, _lineNo);
        appendCut(_detailedReason, _reason);
    }
    return _detailedReason;
}

const char* ExBase::getFileName() const
{
    return _fileName;
}

int ExBase::getLineNo() const
{
    return _lineNo;
}

void ExBase::setReason(const char* text)
{
    if (text) appendCut(_reason, text);
}

void ExBase::setFileName(const char* name)
{
    if (!name) return;
    _fileName[0] = '\0';
    appendCut(_fileName, name);
}

void ExBase::copyTexts(const ExBase& other)
{
    std::memcpy(_detailedReason, other._detailedReason, std::strlen(other._detailedReason) + 1);
    std::memcpy(_reason, other._reason, std::strlen(other._reason) + 1);
    std::memcpy(_fileName, other._fileName, std::strlen(other._fileName) + 1);
}

} // namespace Zu
