#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/content/folderpath.h"
#include "desk/mail/source.h"
#include "desk/objects/session.h"
#include "desk/transport/delivery.h"

#include <QJsonArray>

#include <cstdio>

namespace desk {
namespace {

struct Report {
    QJsonArray delivered;
    /// How many automatic messages went elsewhere, by the path of the folder.
    std::map<QString, int> sorted;
    QJsonArray errors;
    /// The last failure to store a message.
    QString lastFailure;
    bool hasStopped = false;
};

void complain(Report &report, const QString &source, const QString &error) {
    report.errors.append(QJsonObject{{"source", source}, {"error", error}});
    std::fprintf(stderr, "orvelle-desk: %s: %s\n", source.toUtf8().constData(), error.toUtf8().constData());
}

/// Whether no further message could be stored either. What comes back in the same words is not about one message.
bool isStores(const Failure &failure, const Report &report) {
    const QList<qint32> numbers{failures::noDiskSpace, failures::accessDenied, failures::notFound};
    return numbers.contains(failure.number()) || failure.description() == report.lastFailure;
}

void note(const SourceMessage &message, const FolderPlace &asked, const Delivered &delivered, Report &report) {
    QJsonObject entry{
        {"source", message.name}, {"entryId", delivered.item.entryId}, {"subject", delivered.item.subject}};
    if (delivered.kind != AutomaticKind::None)
        entry["automatic"] = nameOf(delivered.kind);
    if (delivered.place.folder.id != asked.folder.id) {
        const QString path = pathOf(*delivered.place.store, delivered.place.folder);
        entry["folder"] = path;
        ++report.sorted[path];
    }
    report.delivered.append(entry);
}

void store(Session &session, const SourceMessage &message, const FolderPlace &place, Report &report) {
    const std::optional<Failure> failure =
        Attempt([&] { note(message, place, deliver(session, place, message.bytes), report); });
    if (failure) {
        complain(report, message.name, failure->description());
        report.hasStopped = isStores(*failure, report);
    }
    report.lastFailure = failure ? failure->description() : QString();
}

void tellWhatIsLeft(const Report &report) {
    QString done = QStringLiteral("Nothing was delivered; try again when that is mended.");
    if (!report.delivered.isEmpty())
        done = QStringLiteral("%1 delivered, the last of them %2. When that is mended, deliver what comes behind it; "
                              "what is delivered again is there twice.")
                   .arg(report.delivered.size())
                   .arg(report.delivered.last()[u"source"].toString());
    std::fprintf(stderr, "orvelle-desk: stopped, for no message can be stored. %s\n", done.toUtf8().constData());
}

void deliverAll(Session &session, const QString &path, const FolderPlace &place, Report &report) {
    const std::unique_ptr<MessageSource> source = MessageSource::open(path);
    SourceMessage message;
    while (!report.hasStopped && source->next(message)) {
        if (message.error.isEmpty())
            store(session, message, place, report);
        else
            complain(report, message.name, message.error);
    }
}

void printCounts(const QString &folder, const Report &report) {
    qsizetype rest = report.delivered.size();
    for (const auto &[path, count] : report.sorted)
        rest -= count;
    printLine(QStringLiteral("Delivered to %1: %2").arg(folder).arg(rest));
    for (const auto &[path, count] : report.sorted)
        printLine(QStringLiteral("Delivered to %1: %2").arg(path).arg(count));
}

} // namespace

int deliverCommand(const CommandLine &line) {
    const std::shared_ptr<Session> session = Session::open(Profile(line.desk));
    const FolderPlace place = line.folder.isEmpty()
                                  ? FolderPlace{&session->mailbox(), session->specialFolder(SpecialFolder::Inbox)}
                                  : folderAt(*session, line.folder);
    Report report;
    for (const QString &path : line.arguments) {
        if (report.hasStopped)
            break;
        const auto failure = Attempt([&] { deliverAll(*session, path, place, report); });
        if (failure)
            complain(report, path, failure->description());
    }
    if (report.hasStopped)
        tellWhatIsLeft(report);
    const QString folder = pathOf(*place.store, place.folder);
    if (line.json)
        printJson(QJsonObject{{"folder", folder}, {"delivered", report.delivered}, {"errors", report.errors}});
    else
        printCounts(folder, report);
    return report.errors.isEmpty() ? 0 : 1;
}

} // namespace desk
