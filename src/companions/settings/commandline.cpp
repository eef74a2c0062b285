#include "companions/settings/commandline.h"

#include "companions/settings/catalogue.h"
#include "companions/settings/databasebackup.h"
#include "companions/settings/installation.h"
#include "companions/settings/intakecommand.h"
#include "companions/settings/output.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cstdio>

namespace settings {

void print(const QByteArray &text) { std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout); }

namespace {

struct Command {
    const char *name;
    const char *form;
    const char *meaning;
    const char *details;
};

constexpr Command commands[] = {
    {"list", "list [--json]", "all stored settings",
     "One \"name=value\" a line; a line end inside a value is shown as \\r\\n. With --json one object, the values as\n"
     "they are.\n"},
    {"get", "get NAME", "the value of one setting",
     "Prints the value and a line end. NAME is taken without regard to case. A setting that is not stored is a\n"
     "failure.\n"},
    {"set", "set NAME VALUE", "stores a value; creates the setting, and the database, when missing",
     "VALUE may be empty and may hold line ends. A time, or a number, that the system could not read is refused.\n"},
    {"export", "export FILE", "all settings and lists into a text file",
     "FILE is written anew; \"-\" is standard output. It holds everything that \"import\" takes: the settings, the\n"
     "responsibles, problem types, caller categories, statuses and callers, one row a line, fields with tabs between\n"
     "them. \\\\ stands for a backslash, \\t a tab, \\n and \\r the line ends.\n"},
    {"import", "import FILE", "settings and lists from such a file",
     "\"-\" is standard input. Settings that FILE does not name stay. Each list that FILE has is brought in line with\n"
     "it: rows that it does not name are deleted. Lists that it does not have stay. Prints what was added, changed "
     "and\n"
     "deleted. All or nothing: a file with a mistake changes nothing, and the message tells the line.\n"},
    {"intake", "intake [--repair]", "lists, or finishes, what programs left behind that were killed",
     "Needs the running desk of the profile $ORVELLE_PROFILE. Lists mails, replies and tickets that are only half "
     "done,\n"
     "marks that keep a folder from being watched, and sent mail that is not with its ticket. The work of a program "
     "that\n"
     "runs is no leftover. With --repair each is finished by the steps that the program would have taken: every mail\n"
     "becomes one ticket with one confirmation, every reply has its place and its work row. It may be run at any "
     "time,\n"
     "beside running programs, and again. It does not touch what another machine's program began, since nobody can "
     "tell\n"
     "from here whether that still runs: --older-than MINUTES finishes that too where it is older.\n"
     "With --json one object with the lists \"repaired\", \"left\" and \"notes\". The notes are for information: open\n"
     "tickets whose items are gone, folders of no ticket, mail that nobody watches, mail that was held back.\n"
     "Exit status: 0 nothing is left, 3 something is, 4 nothing is, but items of open tickets are gone.\n"},
    {"backup", "backup FILE", "the whole database into a file, also while programs work with it",
     "Options: --replace, --json. FILE holds the database as it stood at one moment, tickets and all. It is read "
     "again\n"
     "before it gets its name, and its check sum is written beside it (FILE.sha256). A file that is there is left as "
     "it\n"
     "is, unless --replace is given. A database on a server is backed up there.\n"},
    {"restore", "restore FILE", "such a file back in the place of the database",
     "Option: --json. FILE is checked first. Every orvelle has to be ended: while a program has the database open,\n"
     "nothing is put back. The database that was there is kept beside it, and the message tells its name.\n"},
};

constexpr char usageHead[] = "Reads and writes the settings of Orvelle.\n\nUsage:\n";

constexpr char usageTail[] = R"(
"ORVELLESETTINGS.exe COMMAND --help" tells more of one command.

The database is that of the program folder: ORVELLE_HOME where it is set, else the folder of this program.
A change takes effect when orvelle is started the next time.

Exit status: 0 done, 1 failed (standard error says why), 2 wrong usage; of "intake" 3 when something is left, 4
when items of open tickets are gone.

Known settings:
)";

void complain(const QString &text) { std::fprintf(stderr, "ORVELLESETTINGS: %s\n", qUtf8Printable(text)); }

/// A value on one line.
QString oneLine(QString value) { return value.replace("\r\n", "\\r\\n").replace("\n", "\\n").replace("\r", "\\r"); }

QString formLine(const Command &command) {
    return QString("  ORVELLESETTINGS.exe %1 %2\n").arg(QString(command.form), -16).arg(command.meaning);
}

int help() {
    QString text = usageHead;
    for (const Command &each : commands)
        text += formLine(each);
    text += QString("  ORVELLESETTINGS.exe --help\n") + usageTail;
    for (const Known &each : knownSettings())
        text += QString("  %1 %2\n").arg(QString(each.name), -22).arg(each.meaning);
    print(text.toUtf8());
    return 0;
}

std::optional<int> helpFor(const QString &name) {
    for (const Command &each : commands) {
        if (name == each.name) {
            print((QString("Usage:\n") + formLine(each) + "\n" + each.details).toUtf8());
            return 0;
        }
    }
    return std::nullopt;
}

int list(bool asJson) {
    const QList<Setting> all = Installation(Installation::Missing::Fail).list();
    if (asJson) {
        QJsonObject object;
        for (const Setting &each : all)
            object.insert(each.name, each.value);
        print(QJsonDocument(object).toJson());
        return 0;
    }
    for (const Setting &each : all)
        print((oneLine(each.name) + "=" + oneLine(each.value) + "\n").toUtf8());
    return 0;
}

int get(const QString &name) {
    const std::optional<QString> value = Installation(Installation::Missing::Fail).get(name);
    if (!value) {
        complain(QString("The setting %1 is not stored. \"list\" shows those that are, \"set\" stores one.").arg(name));
        return 1;
    }
    print(value->toUtf8() + '\n');
    return 0;
}

int set(const QString &name, const QString &value) {
    if (const std::optional<QString> problem = problemWith(name, value)) {
        complain(*problem);
        return 1;
    }
    Installation(Installation::Missing::Create).set(name, value);
    if (!findKnown(name))
        complain(QString("Note: %1 is no setting that the system knows. It was stored all the same.").arg(name));
    return 0;
}

int exportTo(const QString &name) {
    const QByteArray content = Installation(Installation::Missing::Fail).exported();
    if (name == "-") {
        print(content);
        return 0;
    }
    QSaveFile file(name);
    if (file.open(QFile::WriteOnly) && file.write(content) == content.size() && file.commit())
        return 0;
    complain(QString("The file %1 could not be written: %2.").arg(name, file.errorString()));
    return 1;
}

/// "section: 2 added: a, b"; nothing where nothing changed.
QString changeLines(const Change &change) {
    constexpr qsizetype most = 10;
    QString text;
    const auto tell = [&](const QStringList &names, const char *what) {
        if (names.isEmpty())
            return;
        QStringList shownNames;
        for (const QString &name : names.first(std::min(names.size(), most)))
            shownNames.append(oneLine(name));
        text += QString("%1: %2 %3: %4").arg(change.section).arg(names.size()).arg(what).arg(shownNames.join(", "));
        text += names.size() > most ? QString(" and %1 more\n").arg(names.size() - most) : QString("\n");
    };
    tell(change.added, "added");
    tell(change.changed, "changed");
    tell(change.removed, "deleted");
    return text;
}

int importFrom(const QString &name) {
    QFile file(name);
    const bool opened = name == "-" ? file.open(stdin, QFile::ReadOnly) : file.open(QFile::ReadOnly);
    if (!opened) {
        complain(QString("The file %1 could not be read: %2.").arg(name, file.errorString()));
        return 1;
    }
    const QByteArray content = file.readAll();
    if (file.error() != QFile::NoError) {
        complain(QString("The file %1 could not be read: %2.").arg(name, file.errorString()));
        return 1;
    }
    QString text;
    // A file with a mistake does not even make a database.
    const QList<Section> sections = readSettings(content);
    for (const Change &change : Installation(Installation::Missing::Create).import(sections))
        text += changeLines(change);
    print((text.isEmpty() ? QString("Nothing changed: everything in the file is stored already.\n") : text).toUtf8());
    return 0;
}

int tell(const QStringList &lines, bool asJson) {
    if (asJson)
        print(QJsonDocument(QJsonObject{{"done", true}, {"messages", QJsonArray::fromStringList(lines)}}).toJson());
    else
        print((lines.join("\n") + "\n").toUtf8());
    return 0;
}

/// "backup" and "restore", whose options may stand before or behind the file; nothing for wrong usage.
std::optional<int> keepOrPutBack(QStringList arguments) {
    const QString command = arguments.takeFirst();
    const bool asJson = arguments.removeAll("--json") > 0;
    const bool replace = command == "backup" && arguments.removeAll("--replace") > 0;
    if (arguments.size() != 1 || arguments[0].startsWith("--"))
        return std::nullopt;
    return tell(command == "backup" ? backUp(arguments[0], replace) : restore(arguments[0]), asJson);
}

/// The command's exit status; nothing for wrong usage.
std::optional<int> runCommand(const QStringList &arguments) {
    const QString command = arguments.value(0);
    const qsizetype count = arguments.size();
    if (command == "--help" || command == "-h")
        return help();
    if (count == 2 && (arguments[1] == "--help" || arguments[1] == "-h"))
        return helpFor(command);
    if (command == "list" && (count == 1 || (count == 2 && arguments[1] == "--json")))
        return list(count == 2);
    if (command == "get" && count == 2)
        return get(arguments[1]);
    if (command == "set" && count == 3)
        return set(arguments[1], arguments[2]);
    if (command == "export" && count == 2)
        return exportTo(arguments[1]);
    if (command == "import" && count == 2)
        return importFrom(arguments[1]);
    if (command == "intake")
        return runIntake(arguments.sliced(1));
    if (command == "backup" || command == "restore")
        return keepOrPutBack(arguments);
    return std::nullopt;
}

} // namespace

int run(const QStringList &arguments) {
    try {
        // Reports that the system's own modules give are in English here, as is all that this program writes.
        LoadLanguages(1);
        if (const std::optional<int> status = runCommand(arguments)) {
            if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
                return *status;
            complain("The output could not be written.");
            return 1;
        }
    } catch (const Failure &failure) {
        complain(failure.description());
        return 1;
    } catch (const ProcessEnd &) {
        return 1; // The report has been given.
    }
    complain("Wrong usage. \"ORVELLESETTINGS.exe --help\" tells the commands.");
    return 2;
}

} // namespace settings
