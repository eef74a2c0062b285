// orvelle-desk: the host that keeps folders and items.

#include "desk/commands.h"
#include "platform/value/failure.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

int run(const desk::CommandLine &line) {
    using Command = int (*)(const desk::CommandLine &);
    static const std::map<QString, Command> commands{
        {"run", desk::runCommand},         {"deliver", desk::deliverCommand},
        {"folders", desk::foldersCommand}, {"folder add", desk::addFolderCommand},
        {"list", desk::listCommand},       {"show", desk::showCommand},
        {"delete", desk::deleteCommand}};
    return commands.at(line.command)(line);
}

int complain(const QString &text, int status) {
    std::fprintf(stderr, "orvelle-desk: %s\n", text.toUtf8().constData());
    return status;
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    try {
        const desk::CommandLine line = desk::parseCommandLine(QCoreApplication::arguments().mid(1));
        if (line.help) {
            std::fputs(desk::helpText().toUtf8().constData(), stdout);
            return 0;
        }
        return run(line);
    } catch (const desk::UsageError &error) {
        return complain(QString::fromUtf8(error.what()) + QStringLiteral(" See orvelle-desk --help."), wrongUsage);
    } catch (const Failure &failure) {
        return complain(failure.description(), failed);
    }
}
