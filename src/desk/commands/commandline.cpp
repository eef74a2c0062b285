#include "desk/commands/commandline.h"

#include <QCommandLineParser>

namespace desk {
namespace {

struct Command {
    QString name;
    int fewest;
    int most;
    /// Beside those that every command takes.
    QStringList options;
};

constexpr int any = std::numeric_limits<int>::max();

const QList<Command> &commands() {
    static const QList<Command> all{{"run", 0, 0, {"open"}},
                                    {"deliver", 1, any, {"folder"}},
                                    {"folders", 0, 0, {"mail"}},
                                    {"folder add", 1, 1, {"home-page"}},
                                    {"list", 1, 1, {"columns", "count"}},
                                    {"show", 1, 1, {}},
                                    {"delete", 1, 1, {}},
                                    {"rules", 0, 0, {"most-an-hour", "sort-automatic", "own-addresses"}},
                                    {"backup", 1, 1, {"replace"}},
                                    {"restore", 1, 1, {"without-public"}},
                                    {"mailbox add", 1, 1, {}},
                                    {"mailbox list", 0, 0, {}},
                                    {"mailbox remove", 1, 1, {}}};
    return all;
}

const Command &commandOf(QStringList &arguments) {
    QString name = arguments.isEmpty() ? QStringLiteral("run") : arguments.takeFirst();
    static const QHash<QString, QString> groups{
        {"folder", "What is to be done with the folder? Known is: folder add PATH."},
        {"mailbox", "What is to be done with the mailbox? Known are: mailbox add FILE, mailbox list, mailbox remove "
                    "FILE|NAME."}};
    if (groups.contains(name)) {
        if (arguments.isEmpty())
            throw UsageError(groups.value(name));
        name += u' ' + arguments.takeFirst();
    }
    for (const Command &command : commands()) {
        if (command.name == name)
            return command;
    }
    throw UsageError(QStringLiteral("There is no command \"%1\".").arg(name));
}

} // namespace

CommandLine parseCommandLine(const QStringList &arguments) {
    const auto named = [](const char *name) { return QCommandLineOption(QString::fromLatin1(name)); };
    const auto valued = [&](const char *name) {
        QCommandLineOption option = named(name);
        option.setValueName(QStringLiteral("value"));
        return option;
    };
    const QList<QCommandLineOption> options{valued("profile"),       valued("user"),
                                            valued("public"),        named("json"),
                                            named("help"),           named("h"),
                                            valued("folder"),        valued("home-page"),
                                            valued("open"),          valued("columns"),
                                            named("count"),          named("mail"),
                                            valued("most-an-hour"),  valued("sort-automatic"),
                                            valued("own-addresses"), named("replace"),
                                            named("without-public"), named("make-missing")};
    const QStringList common{"profile", "user", "public", "make-missing", "json", "h", "help"};

    QCommandLineParser parser;
    parser.addOptions(options);
    if (!parser.parse(QStringList{QStringLiteral("orvelle-desk")} + arguments))
        throw UsageError(parser.errorText() + u'.');

    CommandLine line;
    line.help = parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("h"));
    if (line.help)
        return line;
    line.arguments = parser.positionalArguments();
    const Command &command = commandOf(line.arguments);
    line.command = command.name;
    if (line.arguments.size() < command.fewest)
        throw UsageError(QStringLiteral("The command \"%1\" needs an argument.").arg(command.name));
    if (line.arguments.size() > command.most)
        throw UsageError(QStringLiteral("The command \"%1\" takes no argument \"%2\".")
                             .arg(command.name, line.arguments.at(command.most)));
    for (const QString &name : parser.optionNames()) {
        if (!common.contains(name) && !command.options.contains(name))
            throw UsageError(QStringLiteral("The command \"%1\" takes no option --%2.").arg(command.name, name));
    }
    line.desk = {parser.value(QStringLiteral("profile")), parser.value(QStringLiteral("user")),
                 parser.value(QStringLiteral("public")), parser.isSet(QStringLiteral("make-missing"))};
    line.json = parser.isSet(QStringLiteral("json"));
    line.folder = parser.value(QStringLiteral("folder"));
    line.homePage = parser.value(QStringLiteral("home-page"));
    line.open = parser.value(QStringLiteral("open"));
    for (const QString &column : parser.value(QStringLiteral("columns")).split(u',', Qt::SkipEmptyParts))
        line.columns.append(column.trimmed());
    line.count = parser.isSet(QStringLiteral("count"));
    line.mail = parser.isSet(QStringLiteral("mail"));
    for (const char *rule : {"most-an-hour", "sort-automatic", "own-addresses"}) {
        const QString name = QString::fromLatin1(rule);
        if (parser.isSet(name))
            line.rules.insert(name, parser.value(name));
    }
    line.replace = parser.isSet(QStringLiteral("replace"));
    line.withoutPublic = parser.isSet(QStringLiteral("without-public"));
    return line;
}

QString helpText() {
    return QStringLiteral(R"(orvelle-desk keeps folders, mail and other items, and lets programs work with them.

  orvelle-desk [OPTIONS] [--open PATH]                    runs the desk until it is ended
  orvelle-desk [OPTIONS] deliver [--folder PATH] FILE|DIR...
                                                          messages (.eml files, an mbox, a Maildir) into a folder;
                                                          without --folder into the Inbox
  orvelle-desk [OPTIONS] folders [--mail]                 the folders; with --mail, the mail in each
  orvelle-desk [OPTIONS] folder add PATH [--home-page URL]
                                                          makes a folder and those missing above it
  orvelle-desk [OPTIONS] list PATH [--columns A,B,...] [--count]
                                                          the items of a folder: columns are standard fields
                                                          (Subject, SenderName, ...) and custom properties
  orvelle-desk [OPTIONS] show ENTRYID                     one item with all that it holds
  orvelle-desk [OPTIONS] delete ENTRYID                   an item into the deleted items, and from there for ever
  orvelle-desk [OPTIONS] rules [--most-an-hour N] [--sort-automatic yes|no] [--own-addresses A,B,...]
                                                          the rules for automatic mail, changed where told to: how many
                                                          mails programs may send to one address within an hour (0 for
                                                          any number); whether automatic mail goes into folders of its
                                                          own instead of the Inbox; further addresses that lead here
  orvelle-desk [OPTIONS] backup DIR [--replace]           mailbox, public folders, settings and forms as of one moment
                                                          into a new folder, read again and found whole; with
                                                          --replace in the place of the backup that is there
  orvelle-desk [OPTIONS] restore DIR [--without-public]   such a backup back into the profile, once it is found whole
                                                          and no desk is running; what was there is kept beside it.
                                                          --without-public leaves the public folders as they are
  orvelle-desk [OPTIONS] mailbox add FILE                 opens another person's mailbox too: FILE is the mailbox.store
                                                          of their profile; a running desk opens it at once
  orvelle-desk [OPTIONS] mailbox list                     the mailboxes added, and what is wrong with each
  orvelle-desk [OPTIONS] mailbox remove FILE|NAME         takes one from the list; a running desk lets go of it when it
                                                          is ended

Paths of folders are written \\Top\Folder; or with slashes, /Top/Folder. Commands work beside a running desk and without one.

Options
  --profile DIR   the profile's folder, made when it is missing
                  (default: $ORVELLE_PROFILE, or a folder among your own data)
  --user NAME     the person whose mailbox it is; remembered
  --public FILE   the file of the public folders, which several profiles may share; remembered
  --make-missing  makes the mailbox or the file of the public folders anew, empty, where the profile had one that is
                  missing; without it, that is refused
  --open PATH     the folder that the running desk shows; remembered
  --json          machine-readable output: one document
  -h, --help      this text

The exit status is 0 when it worked, 1 when it did not, 2 for a wrong command line.
)");
}

} // namespace desk
