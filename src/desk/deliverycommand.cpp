#include "desk/commands.h"
#include "desk/mail/source.h"
#include "desk/objects/delivery.h"
#include "desk/objects/folderpath.h"
#include "desk/objects/session.h"
#include "desk/output.h"

#include <QJsonArray>

#include <cstdio>

namespace desk {
namespace {

struct Report {
    QJsonArray delivered;
    QJsonArray errors;
};

void complain(Report &report, const QString &source, const QString &error) {
    report.errors.append(QJsonObject{{"source", source}, {"error", error}});
    std::fprintf(stderr, "orvelle-desk: %s: %s\n", source.toUtf8().constData(), error.toUtf8().constData());
}

void deliverAll(const QString &path, const FolderPlace &place, Report &report) {
    const std::unique_ptr<MessageSource> source = MessageSource::open(path);
    SourceMessage message;
    while (source->next(message)) {
        if (!message.error.isEmpty()) {
            complain(report, message.name, message.error);
            continue;
        }
        const ItemRecord item = deliver(*place.store, place.folder.id, message.bytes);
        report.delivered.append(
            QJsonObject{{"source", message.name}, {"entryId", item.entryId}, {"subject", item.subject}});
    }
}

} // namespace

int deliverCommand(const CommandLine &line) {
    const std::shared_ptr<Session> session = Session::open(Profile(line.desk));
    const FolderPlace place = line.folder.isEmpty()
                                  ? FolderPlace{&session->mailbox(), session->specialFolder(SpecialFolder::Inbox)}
                                  : folderAt(*session, line.folder);
    Report report;
    for (const QString &path : line.arguments) {
        const auto failure = Attempt([&] { deliverAll(path, place, report); });
        if (failure)
            complain(report, path, failure->description());
    }
    const QString folder = pathOf(*place.store, place.folder);
    if (line.json)
        printJson(QJsonObject{{"folder", folder}, {"delivered", report.delivered}, {"errors", report.errors}});
    else
        printLine(QStringLiteral("Delivered to %1: %2").arg(folder).arg(report.delivered.size()));
    return report.errors.isEmpty() ? 0 : 1;
}

} // namespace desk
