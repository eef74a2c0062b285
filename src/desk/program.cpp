// orvelle-desk: the host that keeps folders and items.

#include "desk/commands/commands.h"
#include "platform/value/failure.h"
#include "platform/value/pathbytes.h"
#include "platform/window/application.h"

#include <csignal>
#include <cstdio>

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

int run(const desk::CommandLine &line) {
    using Command = int (*)(const desk::CommandLine &);
    static const std::map<QString, Command> commands{{"run", desk::runCommand},
                                                     {"deliver", desk::deliverCommand},
                                                     {"folders", desk::foldersCommand},
                                                     {"folder add", desk::addFolderCommand},
                                                     {"list", desk::listCommand},
                                                     {"show", desk::showCommand},
                                                     {"delete", desk::deleteCommand},
                                                     {"mailbox add", desk::addMailboxCommand},
                                                     {"mailbox list", desk::listMailboxesCommand},
                                                     {"mailbox remove", desk::removeMailboxCommand},
                                                     {"rules", desk::rulesCommand},
                                                     {"backup", desk::backupCommand},
                                                     {"restore", desk::restoreCommand}};
    return commands.at(line.command)(line);
}

QStringList argumentsOf(int argc, char **argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(pathFromBytes(argv[i]));
    return arguments;
}

/// The commands ask nobody anything.
std::unique_ptr<QCoreApplication> makeApplication(const desk::CommandLine &line, int &argc, char **argv) {
    return line.command == QStringLiteral("run") ? window::makeApplication(argc, argv)
                                                 : std::make_unique<QCoreApplication>(argc, argv);
}

int complain(const QString &text, int status) {
    std::fprintf(stderr, "orvelle-desk: %s\n", text.toUtf8().constData());
    return status;
}

} // namespace

int main(int argc, char **argv) {
    // A limit on the size of files then fails the write, as a full disk does, and the program says so.
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        const desk::CommandLine line = desk::parseCommandLine(argumentsOf(argc, argv));
        const std::unique_ptr<QCoreApplication> application = makeApplication(line, argc, argv);
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
