// Locales that write numbers as "1.234,5", one of each kind, until a scope ends.

#ifndef ZU_TESTS_COMMALOCALE_H
#define ZU_TESTS_COMMALOCALE_H

#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <locale>
#include <string>

namespace support
{

// For standard streams: their decimal point, grouping and words.
class CommaFacet : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override
    {
        return ',';
    }

    char do_thousands_sep() const override
    {
        return '.';
    }

    std::string do_grouping() const override
    {
        return "\3";
    }

    std::string do_truename() const override
    {
        return "wahr";
    }

    std::string do_falsename() const override
    {
        return "falsch";
    }
};

// The global locale of the standard streams, and that of the predefined streams.
class CommaStreams
{
public:
    CommaStreams()
        : _former(std::locale::global(std::locale(std::locale::classic(), new CommaFacet)))
    {
        _formerOut = std::cout.imbue(std::locale());
        _formerErr = std::cerr.imbue(std::locale());
    }

    CommaStreams(const CommaStreams&) = delete;
    CommaStreams& operator=(const CommaStreams&) = delete;

    ~CommaStreams()
    {
        std::cerr.imbue(_formerErr);
        std::cout.imbue(_formerOut);
        std::locale::global(_former);
    }

private:
    std::locale _former;
    std::locale _formerOut;
    std::locale _formerErr;
};

// The locale of `setlocale()`: one that the system has, or one made for the purpose where the
// system can make one.
class CommaNumerals
{
public:
    CommaNumerals() : _former(std::setlocale(LC_ALL, nullptr)), _path("LOCPATH")
    {
        for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German_Germany.1252",
                                       "German", "fr_FR.UTF-8", "French"})
            if (std::setlocale(LC_ALL, name) && isSet()) return;
        make();
    }

    CommaNumerals(const CommaNumerals&) = delete;
    CommaNumerals& operator=(const CommaNumerals&) = delete;

    ~CommaNumerals()
    {
        std::setlocale(LC_ALL, _former.c_str());
    }

    // Whether such a locale was found or made.
    static bool isSet()
    {
        return std::strcmp(std::localeconv()->decimal_point, ",") == 0;
    }

private:
    void make()
    {
        std::ofstream(_dir.file("source")) << "comment_char %\nescape_char /\nLC_NUMERIC\n"
                                              "decimal_point \"<U002C>\"\n"
                                              "thousands_sep \"<U002E>\"\n"
                                              "grouping 3;3\nEND LC_NUMERIC\n";
        const std::string command =
            "localedef -c -i " + _dir.file("source") + " " + _dir.file("comma");
        // It prints what else a locale might have: that is ignored, as is its exit value.
        const std::string log = " >" + _dir.file("log") + " 2>&1";
        if (std::system((command + log).c_str()) == -1) return;
        _path.set(_dir.path());
        if (!std::setlocale(LC_ALL, "comma")) std::setlocale(LC_NUMERIC, "comma");
    }

    const TempDir _dir;
    const std::string _former;
    const VariableGuard _path;
};

} // namespace support

#endif
