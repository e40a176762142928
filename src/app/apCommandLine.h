/// @file
/// The words of a command line, taken apart as people expect it. Internal to the kit.

#ifndef ZU_APP_APCOMMANDLINE_H
#define ZU_APP_APCOMMANDLINE_H

#include <cstddef>
#include <string>
#include <vector>

namespace Zu
{

/// One option of a program.
struct ApOption
{
    /// The letter; 0 for an option that has a long name only.
    char _letter = 0;
    /// Whether it takes a value.
    bool _takesValue = false;
    /// The long name, without dashes; may be empty.
    std::string _longName;
};

/// An option that was found in the words.
struct ApGiven
{
    /// The index of the option among those of the program.
    std::size_t _option;
    /// As it was given: "-p" or "--port".
    std::string _spelling;
    /// Empty if the option takes none.
    std::string _value;
};

/// The words of a command line, without the name of the program, in their meaning.
///
/// An option is a letter behind one dash, or a long name behind two. Several letters may share a
/// word. A value is the rest of the word behind the letter, what stands behind "=" after a long
/// name, or the whole next word, whatever it looks like. Options may stand before, between and
/// behind the other words. "--" ends the options; a single "-" is a word.
class ApCommandLine
{
public:
    /// Takes the words apart; both are only read.
    ApCommandLine(const std::vector<ApOption>& options, const std::vector<std::string>& words);

    /// The options in their order.
    const std::vector<ApGiven>& given() const
    {
        return _given;
    }

    /// The words that are no options, in their order.
    const std::vector<std::string>& words() const
    {
        return _words;
    }

    /// What can't be used, each a sentence without a full stop, such as
    /// "unknown option '--prot'; did you mean '--port'?".
    const std::vector<std::string>& errors() const
    {
        return _errors;
    }

    /// The same command line as InOptionParser reads it: letters with their values, and "--" in
    /// front of the words if there are any. Options without a letter are left out.
    std::vector<std::string> inLetters() const;

private:
    using Words = std::vector<std::string>;

    void readLetters(const Words& words, std::size_t& index);
    void readLongName(const Words& words, std::size_t& index);
    std::vector<std::string> longNames() const;

    const std::vector<ApOption>& _options;
    std::vector<ApGiven> _given;
    std::vector<std::string> _words;
    std::vector<std::string> _errors;
};

} // namespace Zu

#endif
