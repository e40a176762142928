// What the library prints to standard output.

#ifndef ZU_FUZZ_COUTCAPTURE_H
#define ZU_FUZZ_COUTCAPTURE_H

#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace fuzz
{

// Keeps what is printed while it lives.
class CoutCapture
{
public:
    CoutCapture() : _former(std::cout.rdbuf(_kept.rdbuf())) {}
    CoutCapture(const CoutCapture&) = delete;
    CoutCapture& operator=(const CoutCapture&) = delete;

    ~CoutCapture()
    {
        std::cout.rdbuf(_former);
    }

    std::string text() const
    {
        return _kept.str();
    }

private:
    std::ostringstream _kept;
    std::streambuf* _former;
};

} // namespace fuzz

#endif
