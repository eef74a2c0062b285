#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/content/fields.h"
#include "desk/content/folderpath.h"
#include "desk/objects/session.h"

#include <QCryptographicHash>
#include <QJsonArray>

namespace desk {
namespace {

struct ShownAttachment {
    AttachmentRecord record;
    QString sha256;
};

struct ShownItem {
    QString folder;
    ItemRecord fields;
    QList<Property> properties;
    Bodies bodies;
    QList<ShownAttachment> attachments;
};

ShownItem read(Session &session, const QString &entryId) {
    Store *store = session.storeOf(entryId);
    const auto fields = store ? store->itemByEntryId(entryId) : std::nullopt;
    if (!fields)
        throw Failure(failures::notFound, QStringLiteral("There is no item %1.").arg(entryId));
    ShownItem item{pathOf(*store, store->folder(fields->folder)),
                   *fields,
                   store->properties(fields->id),
                   store->bodies(fields->id),
                   {}};
    for (const AttachmentRecord &attachment : store->attachments(fields->id)) {
        const QByteArray data = store->attachmentData(attachment.id);
        const QByteArray hash = QCryptographicHash::hash(data, QCryptographicHash::Sha256);
        item.attachments.append({attachment, QString::fromLatin1(hash.toHex())});
    }
    return item;
}

QJsonObject jsonOf(const ShownItem &item) {
    QJsonObject fields;
    for (const StandardField &field : standardFields())
        fields[QString::fromLatin1(field.name)] = desk::jsonOf(field.read(item.fields));
    QJsonArray properties;
    for (const Property &property : item.properties)
        properties.append(desk::jsonOf(property));
    QJsonArray attachments;
    for (const ShownAttachment &attachment : item.attachments)
        attachments.append(QJsonObject{{"fileName", attachment.record.fileName},
                                       {"displayName", attachment.record.displayName},
                                       {"type", attachment.record.type},
                                       {"mimeType", attachment.record.mimeType},
                                       {"size", attachment.record.size},
                                       {"sha256", attachment.sha256}});
    return {{"entryId", item.fields.entryId}, {"folder", item.folder},     {"fields", fields},
            {"properties", properties},       {"body", item.bodies.plain}, {"htmlBody", item.bodies.html},
            {"attachments", attachments}};
}

void print(const ShownItem &item) {
    printLine(QStringLiteral("Folder: ") + item.folder);
    for (const StandardField &field : standardFields()) {
        const QString text = plainText(field.read(item.fields));
        if (!text.isEmpty())
            printLine(QStringLiteral("%1: %2").arg(QString::fromLatin1(field.name), text));
    }
    for (const Property &property : item.properties)
        printLine(QStringLiteral("[%1]: %2").arg(property.name, plainText(property.value)));
    for (const ShownAttachment &attachment : item.attachments)
        printLine(QStringLiteral("Attachment: %1, %2 bytes, SHA-256 %3")
                      .arg(attachment.record.displayName)
                      .arg(attachment.record.size)
                      .arg(attachment.sha256));
    printLine(QString());
    printLine(item.bodies.plain);
}

} // namespace

int showCommand(const CommandLine &line) {
    const std::shared_ptr<Session> session = Session::open(Profile(line.desk));
    const ShownItem item = read(*session, line.arguments.first());
    if (line.json)
        printJson(jsonOf(item));
    else
        print(item);
    return 0;
}

} // namespace desk
