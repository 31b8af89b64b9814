#pragma once

#include <QString>
#include <QStringList>

namespace vantrel {

/// What the arguments of a start ask for.
struct CommandLine {
    enum class Action {
        run,    ///< open the window
        inform, ///< print `text` on standard output and end with status 0
        refuse, ///< print `text` on standard error and end with status 2
    };

    Action action = Action::run;
    QString text; ///< ends with a line break

    friend bool operator==(const CommandLine &, const CommandLine &) = default;
};

/// Whether arguments that are not the program's own end the start.
enum class UnknownArguments { refused, ignored };

/// Reads the arguments, the program's name first. Needs no application object, so that `--version` works
/// where there is no display. The toolkit takes out its own arguments (`-platform` and the like) only when
/// the application object is made; before that, unknown ones are to be ignored.
[[nodiscard]] CommandLine parseCommandLine(const QStringList &arguments, UnknownArguments unknown);

} // namespace vantrel
