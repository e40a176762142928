/// @file
/// A parser for single-letter options and for comma-separated sub-options.

#ifndef ZU_BASE_INOPTIONPARSER_H
#define ZU_BASE_INOPTIONPARSER_H

#include "baseApi.h"

namespace Zu
{

/// Walks an argument vector in the manner of the POSIX function getopt, but keeps its state in the
/// object. There are no long options: any word that begins with two dashes ends the options.
///
/// The words and the option string are not copied and must outlive the parser.
class ZU_BASE_API InOptionParser
{
public:
    /// Parses `argc` words, at least one. The first one, the program's name, is skipped. In
    /// `options` a letter followed by ":" takes a value.
    InOptionParser(int argc, char* const* argv, const char* options);

    /// What getOption() returns at the end of the options.
    static constexpr int END_OF_OPTIONS = -1;

    /// What getOption() returns for an unknown option: the code of "?", 63.
    static constexpr int UNKNOWN_OPTION = '?';

    /// Returns the next option's letter, a number from 1 to 255; `UNKNOWN_OPTION` for an unknown
    /// one; `END_OF_OPTIONS` at the end of the options, after which it must not be called again.
    /// Several letters may share one word.
    ///
    /// The value of an option is the rest of its word or, if that is empty, the whole next word,
    /// whatever it looks like. An option whose value is missing is returned with a null value.
    int getOption();

    /// The value of the option that getOption() returned last, or null.
    const char* getValue() const;

    /// Moves on to one more value of the current option: the next word, whatever it looks like.
    /// Null if the option has no value or no word is left.
    const char* gotoNextValue();

    /// The index of the current word; after the end of the options, that of the first word that was
    /// not consumed.
    int getArgumentIndex() const;

    /// Splits the first sub-option off the text at `*optionp`, in place: a name, optionally "=" and
    /// a value, up to a comma or the end. Moves `*optionp` past it and returns the name's index in
    /// `tokens`, a null-terminated array, with `*valuep` pointing to the value or null. A name that
    /// is not in the table gives -1, with `*valuep` pointing to the name.
    ///
    /// A comma at the end of the text only ends the last sub-option: a caller that continues while
    /// there is text meets no empty one after it. Between two commas, and in an empty text, there
    /// is a sub-option with an empty name.
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
