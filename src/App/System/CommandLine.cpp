#include "App/System/CommandLine.h"

#include "App/System/AppVersion.h"
#include "App/System/Product.h"
#include "App/System/Version.h"

#include <QCommandLineParser>

namespace vantrel {

namespace {

QString helpText() {
    return QStringLiteral(
               "Usage: vantrel [options]\n"
               "Browse the storage of an Android phone and copy files between it and this computer.\n"
               "\n"
               "Options:\n"
               "  -h, --help     Print this help and exit.\n"
               "  -v, --version  Print the version and exit.\n"
               "\n"
               "Connect the phone by USB with USB debugging on. A second start brings the window of the\n"
               "first to the front.\n"
               "\n"
               "Web site: %1\n"
               "Feedback: %2\n")
        .arg(product::website(), product::feedbackAddress());
}

} // namespace

CommandLine parseCommandLine(const QStringList &arguments, UnknownArguments unknown) {
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption versionOption(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    QCommandLineParser parser;
    // Otherwise "-platform" would be read as a row of one-letter options.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({help, versionOption});
    const bool understood = parser.parse(arguments);
    const auto refuse = [](const QString &reason) {
        return CommandLine{CommandLine::Action::refuse,
                           QStringLiteral("vantrel: %1\nTry 'vantrel --help'.\n").arg(reason)};
    };
    if (unknown == UnknownArguments::refused) {
        if (!understood)
            return refuse(parser.errorText());
        if (!parser.positionalArguments().isEmpty())
            return refuse(
                QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()));
    }
    if (parser.isSet(help))
        return {CommandLine::Action::inform, helpText()};
    if (parser.isSet(versionOption))
        return {CommandLine::Action::inform,
                product::name() + u' ' + AppVersion{version::shortVersion(), version::build()}.label() +
                    u'\n'};
    return {};
}

} // namespace vantrel
