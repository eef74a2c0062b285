// The mailboxes of other people that a profile opens.

#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/content/othermailboxes.h"
#include "desk/objects/session.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

namespace desk {
namespace {

/// A file as it is listed. A profile's folder stands for its mailbox.
QString fileFrom(const QString &argument) {
    QFileInfo info(argument);
    if (info.isDir())
        info = QFileInfo(QDir(argument).filePath(QStringLiteral("mailbox.store")));
    return QDir::cleanPath(info.absoluteFilePath());
}

struct Listed {
    QString file;
    /// The name of its top folder, or what is wrong with it.
    QString name{};
    QString problem{};
};

Listed lookAt(const QString &file) {
    Listed listed{file};
    if (const std::optional<Failure> failure = Attempt([&] { listed.name = openMailbox(file)->root().name; }))
        listed.problem = failure->description();
    return listed;
}

void print(const CommandLine &line, const Listed &listed) {
    if (line.json)
        printJson(QJsonObject{{"name", listed.name}, {"file", listed.file}});
    else
        printLine(QStringLiteral("\\\\%1\t%2").arg(plainText(listed.name), listed.file));
}

} // namespace

int addMailboxCommand(const CommandLine &line) {
    const std::shared_ptr<Session> session = Session::open(Profile(line.desk));
    Listed added{fileFrom(line.arguments.first())};
    const std::unique_ptr<Store> store = openMailbox(added.file);
    added.name = store->root().name;
    for (Store *standing : session->stores()) {
        const bool isSame = standing->tag() == store->tag();
        if (isSame && standing != &session->mailbox() && standing->path() == added.file) {
            print(line, added);
            return 0;
        }
        if (isSame || standing->root().name == added.name)
            throw Failure(failures::keyExists, QStringLiteral("The mailbox %1 can't be added: \"%2\" is open already, "
                                                              "from %3.")
                                                   .arg(added.file, added.name, standing->path()));
    }
    MailboxList(session->profile()).add(added.file);
    print(line, added);
    return 0;
}

int listMailboxesCommand(const CommandLine &line) {
    QJsonArray all;
    for (const QString &file : MailboxList(Profile(line.desk)).files()) {
        const Listed listed = lookAt(file);
        if (line.json)
            all.append(QJsonObject{{"name", listed.name}, {"file", file}, {"problem", listed.problem}});
        else if (listed.problem.isEmpty())
            print(line, listed);
        else
            printLine(QStringLiteral("(not open)\t%1\t%2").arg(file, listed.problem));
    }
    if (line.json)
        printJson(all);
    return 0;
}

int removeMailboxCommand(const CommandLine &line) {
    const MailboxList list{Profile(line.desk)};
    const QString &asked = line.arguments.first();
    for (const QString &file : list.files()) {
        Listed listed{file};
        if (file != fileFrom(asked)) {
            listed = lookAt(file);
            if (listed.name.isEmpty() || (listed.name != asked && personOf(listed.name) != asked))
                continue;
        }
        list.remove(file);
        print(line, listed);
        return 0;
    }
    throw Failure(failures::notFound,
                  QStringLiteral("No mailbox \"%1\" is listed. See orvelle-desk mailbox list.").arg(asked));
}

} // namespace desk
