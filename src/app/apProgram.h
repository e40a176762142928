/// @file
/// The front of a program: its command line, its start, its end.

#ifndef ZU_APP_APPROGRAM_H
#define ZU_APP_APPROGRAM_H

#include "../base/dbgBuildText.h"
#include "../base/lgEvent.h"
#include "apFileFormat.h"
#include "apLogGroup.h"
#include "apPackage.h"
#include "appApi.h"
#include "lgService.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zu
{

struct ApProgramState;

/// Runs a program as people expect it of one. What it can be given is what its packages declare:
/// the aliases and variables. run()
///
/// 1. reads the command line. `--help`, or `-h` unless the program has that letter, shows the
///    options and the environment variables with their descriptions and defaults; `--version` shows
///    the build record; `--completion` writes a completion for bash. Then the program ends with the
///    value 0: no package was started, no file opened.
/// 2. refuses what can't be used: unknown options, unexpected arguments, numbers that are not
///    whole or out of range, required values that are missing, a `ZU_LOG_GROUPS` that has not the
///    form GROUP=LEVEL,GROUP=LEVEL... Each is a line on standard error that names the option or
///    variable; the program ends with the value 2.
/// 3. starts the packages with InInitGuard, then the log service. What fails is a line on standard
///    error, and the program ends with the value 1; packages that were started by then are not
///    stopped if the exception of the failing one is none of InEx, as InInitGuard has it. Groups
///    and levels in `ZU_LOG_GROUPS` and
///    `ZU_LOG_DEFAULT_LEVEL` that do not exist are reported there, with the names that do.
/// 4. calls the program, and returns its value. An exception is a line on standard error and the
///    value 1, as is one of the shut-down.
///
/// Options may have long names beside their letters, and may stand between and after the arguments.
/// InContextAliasMgrBase::getUnboundArgs() has the program's name, and behind it what arguments()
/// has. A switch, which is a variable of type bool, takes only 0, 1, false and true.
///
/// A process has one such object, in `main`.
///
/// Thread-safety: one thread at a time.
class ZU_APP_API ApProgram
{
public:
    /// `purpose` is shown by `--help`: a sentence or more; may be empty.
    explicit ApProgram(std::string purpose = {});
    ApProgram(const ApProgram&) = delete;
    ApProgram& operator=(const ApProgram&) = delete;
    ~ApProgram();

    /// @{
    /// What the program declares about itself; to be called before run(). Errors of the program, an
    /// unknown letter or handle, or a name that is taken, raise std::logic_error in run().

    /// The record that `--version` shows; without one there is no such option. The texts must
    /// outlive the object.
    ApProgram& build(const DbgBuildText& record);

    /// A long name for the option with this letter, without dashes.
    ApProgram& longName(char letter, std::string name);

    /// The range of the variable of type int with this handle, bounds included.
    ApProgram& range(std::string handle, int least, int most);

    /// The variable with this handle must be given, by option or environment.
    ApProgram& require(std::string handle);

    /// The program takes arguments that are no options: how `--help` shows them, such as "FILE...",
    /// and how many there may be.
    ApProgram& arguments(std::string usage, std::size_t least = 0,
                         std::size_t most = static_cast<std::size_t>(-1));

    /// How the log service is set up, asked when the packages are up; without it the environment
    /// decides alone.
    ApProgram& logOptions(std::function<LgServiceOptions()> options);

    /// The program takes a file of settings, which `--settings` names; its values prevail over
    /// defaults, and the environment over them. Without the option `path` is read, unless it is
    /// empty; a program never looks for a file by itself. The file must be one that nobody else can
    /// change. Whatever can't be used in it is refused, with its line. `format` must outlive the
    /// object.
    ApProgram& settings(const ApFileFormat& format, std::string path = {});

    /// The program has no log service: statements write to standard output.
    ApProgram& withoutLog();
    /// @}

    /// Runs the program: `body` returns the exit value, or nothing for 0. To be called once, with
    /// the arguments of `main`.
    template <class Body> int run(int argc, const char* const* argv, Body&& body)
    {
        return runBody(argc, argv,
                       [&]() -> int
                       {
                           if constexpr (std::is_void_v<std::invoke_result_t<Body&>>)
                           {
                               body();
                               return 0;
                           }
                           else
                               return body();
                       });
    }

    /// The arguments that are no options; while the program runs.
    const std::vector<std::string>& arguments() const;

    /// The log service; while the program runs, and unless it has none.
    const LgService& log() const;

private:
    int runBody(int argc, const char* const* argv, const std::function<int()>& body);

    std::unique_ptr<ApProgramState> _state;
};

/// Runs a program that declares nothing further: see ApProgram.
///
/// @code
/// int main(int argc, char** argv)
/// {
///     return Zu::runProgram(argc, argv, [] { serve(); });
/// }
/// @endcode
template <class Body> int runProgram(int argc, const char* const* argv, Body&& body)
{
    return ApProgram().run(argc, argv, std::forward<Body>(body));
}

} // namespace Zu

#endif
