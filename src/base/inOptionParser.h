/// @file
/// A parser for single-letter options and for comma-separated sub-options.

#ifndef ZU_BASE_INOPTIONPARSER_H
#define ZU_BASE_INOPTIONPARSER_H

#include "baseApi.h"

namespace Zu
{

/// Walks an argument vector in the manner of the POSIX function getopt, with its state in the
/// object. There are no long options: any word that begins with two dashes ends the options.
///
/// The words and the option string are not copied and must outlive the parser.
class ZU_BASE_API InOptionParser
{
public:
    /// `argc` words, at least one, of which the first, the program's name, is not parsed. In
    /// `options` a letter with ":" behind it takes a value.
    InOptionParser(int argc, char* const* argv, const char* options);

    /// The next option's letter, a number from 1 to 255; 63, the code of "?", for an unknown one;
    /// -1 where the options end, after which it is not to be called again. Several letters may
    /// share one word.
    ///
    /// The value of an option is the rest of its word or else the whole next word, whatever that
    /// looks like; an option whose value is missing is returned with a null value.
    int getOption();

    /// The value of the option that getOption() returned last, or null.
    const char* getValue() const;

    /// Moves on to one more value of the present option, the next word, whatever it looks like.
    /// Null when the option has no value or no word is left.
    const char* gotoNextValue();

    /// The index of the word in progress; after the end of the options, of the first word that
    /// was not consumed.
    int getArgumentIndex() const;

    /// Splits the first sub-option off the text at `*optionp`, in place: a name, perhaps "=" and a
    /// value, up to a comma or the end. Moves `*optionp` behind it and returns the name's index in
    /// `tokens`, a null-terminated array, with `*valuep` on the value or null. A name that is not
    /// in the table gives -1, with `*valuep` on the name. A comma at the end of the text is no more
    /// than an end: who goes on while there is text meets no empty sub-option behind it. What
    /// stands between two commas, and an empty text, are sub-options whose name is empty.
    static int getSubOption(char** optionp, char* const* tokens, char** valuep);

private:
    bool enterNextWord();
    void leaveWord();

    int _argc;
    char* const* _argv;
    const char* _options;
    const char* _value;
    int _argIndex;
    const char* _cursor;
};

} // namespace Zu

#endif
