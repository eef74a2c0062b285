#include "desk/store/itemreader.h"

#include "desk/store/statements.h"
#include "desk/store/storedtext.h"

namespace desk {

Bodies readBodies(Connection &connection, ItemId item) {
    Bodies found;
    connection.each(sql::bodies, {{"item", item}},
                    [&found](const Row &row) { found = {.plain = row.text(0), .html = row.text(1)}; });
    return found;
}

QByteArray readOriginal(Connection &connection, ItemId item) {
    return connection.value(sql::original, {{"item", item}}).value_or(QVariant()).toByteArray();
}

QList<Property> readProperties(Connection &connection, ItemId item) {
    QList<Property> found;
    connection.each(sql::properties, {{"item", item}}, [&found](const Row &row) {
        const auto type = static_cast<PropertyType>(row.number(2));
        found.append({.name = row.text(1), .type = type, .value = valueOf(type, row[3])});
    });
    return found;
}

QList<AttachmentRecord> readAttachments(Connection &connection, ItemId item) {
    QList<AttachmentRecord> found;
    connection.each(sql::attachments, {{"item", item}},
                    [&found](const Row &row) { found.append(attachmentFrom(row)); });
    return found;
}

AttachmentRecord attachmentFrom(const Row &row) {
    return {.id = row.number(0),
            .type = static_cast<qint32>(row.number(1)),
            .fileName = row.text(2),
            .displayName = row.text(3),
            .mimeType = row.text(4),
            .contentId = row.text(5),
            .size = row.number(6),
            .data = {}};
}

QByteArray readAttachmentData(Connection &connection, qint64 attachment) {
    const std::optional<QVariant> data = connection.value(sql::attachmentData, {{"id", attachment}});
    if (!data)
        throw Failure(failures::notFound, QStringLiteral("The attachment no longer exists; somebody removed it."));
    return data->toByteArray();
}

Value valueOf(PropertyType type, const QVariant &stored) {
    if (stored.isNull())
        return {};
    switch (type) {
    case PropertyType::Number:
        return stored.toDouble();
    case PropertyType::Date:
        return DateTime{stored.toDouble()};
    case PropertyType::YesNo:
        return stored.toBool();
    case PropertyType::Text:
        break;
    }
    return textOf(stored);
}

} // namespace desk
