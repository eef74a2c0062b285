#include "desk/store/itemwriter.h"

#include "desk/store/itemreader.h"
#include "desk/store/statements.h"
#include "desk/store/storedtext.h"
#include "platform/value/convert.h"

#include <QSet>

namespace desk {

namespace {

/// As UTF-8.
qint64 bytesOf(const QString &text) {
    qint64 bytes = 0;
    for (const QChar unit : text)
        bytes += unit < QChar(0x80) ? 1 : unit < QChar(0x800) || unit.isSurrogate() ? 2 : 3;
    return bytes;
}

qint64 bytesOf(const Bodies &bodies) { return bytesOf(bodies.plain) + bytesOf(bodies.html); }

void putBodies(Connection &connection, ItemId item, const Bodies &bodies) {
    connection.run(sql::putBodies,
                   {{"item", item}, {"plain", storedText(bodies.plain)}, {"html", storedText(bodies.html)}});
}

/// Never null, which would be "no data" to the database.
QByteArray present(const QByteArray &data) { return data.isNull() ? QByteArrayLiteral("") : data; }

void putOriginal(Connection &connection, ItemId item, const QByteArray &data) {
    connection.run(sql::putOriginal, {{"item", item}, {"data", present(data)}});
}

QVariant storedValue(const Property &property) {
    if (property.value.isEmpty())
        return {};
    switch (property.type) {
    case PropertyType::Number:
        return toDouble(property.value);
    case PropertyType::Date:
        return toDateTime(property.value).days;
    case PropertyType::YesNo:
        return toBool(property.value) ? 1 : 0;
    case PropertyType::Text:
        break;
    }
    return storedText(toText(property.value));
}

QVariant storedFolder(std::optional<FolderId> folder) { return folder ? QVariant(*folder) : QVariant(); }

void putProperty(Connection &connection, const ItemPlace &place, const QString &nameKey, const Property &property,
                 qint64 position) {
    connection.run(sql::putProperty, {{"item", place.id},
                                      {"name_key", storedText(nameKey)},
                                      {"position", position},
                                      {"name", storedText(property.name)},
                                      {"type", static_cast<qint32>(property.type)},
                                      {"value", storedValue(property)},
                                      {"value_key", storedText(keyOf(property.value))},
                                      {"folder", storedFolder(place.folder)},
                                      {"arrival", place.arrival}});
}

/// A property as it stands, by the key of its name.
struct StandingProperty {
    Property property;
    qint64 position = 0;
};

QHash<QString, StandingProperty> standingProperties(Connection &connection, ItemId item) {
    QHash<QString, StandingProperty> standing;
    connection.each(sql::properties, {{"item", item}}, [&standing](const Row &row) {
        const auto type = static_cast<PropertyType>(row.number(2));
        standing.insert(row.text(0), {.property = {.name = row.text(1), .type = type, .value = valueOf(type, row[3])},
                                      .position = row.number(4)});
    });
    return standing;
}

void updateProperties(Connection &connection, const ItemPlace &place, const QList<Property> &properties) {
    QHash<QString, StandingProperty> standing = standingProperties(connection, place.id);
    qint64 next = 0;
    for (const StandingProperty &each : std::as_const(standing))
        next = std::max(next, each.position + 1);
    for (const Property &property : properties) {
        const QString key = foldedKey(property.name);
        const auto known = standing.constFind(key);
        if (known == standing.constEnd())
            putProperty(connection, place, key, property, next++);
        else if (known->property != property)
            putProperty(connection, place, key, property, known->position);
        standing.remove(key);
    }
    for (auto left = standing.keyBegin(); left != standing.keyEnd(); ++left)
        connection.run(sql::removeProperty, {{"item", place.id}, {"name_key", storedText(*left)}});
}

void addAttachment(Connection &connection, ItemId item, const AttachmentRecord &attachment, qint64 position) {
    connection.run(sql::addAttachment, {{"id", takeNumbers(connection)},
                                        {"item", item},
                                        {"position", position},
                                        {"type", attachment.type},
                                        {"file_name", storedText(attachment.fileName)},
                                        {"display_name", storedText(attachment.displayName)},
                                        {"mime_type", storedText(attachment.mimeType)},
                                        {"content_id", storedText(attachment.contentId)},
                                        {"size", attachment.data.size()},
                                        {"data", present(attachment.data)}});
}

bool sameBesidesData(AttachmentRecord left, AttachmentRecord right) {
    left.data.clear();
    right.data.clear();
    left.size = right.size = 0;
    return left == right;
}

void saveAttachment(Connection &connection, ItemId item, const AttachmentRecord &attachment, qint64 position) {
    const qint64 changed = connection.run(sql::saveAttachment, {{"position", position},
                                                                {"type", attachment.type},
                                                                {"file_name", storedText(attachment.fileName)},
                                                                {"display_name", storedText(attachment.displayName)},
                                                                {"mime_type", storedText(attachment.mimeType)},
                                                                {"content_id", storedText(attachment.contentId)},
                                                                {"id", attachment.id},
                                                                {"item", item}});
    if (changed == 0)
        throw Failure(failures::notFound,
                      QStringLiteral("The attachment \"%1\" is not one of the item's.").arg(attachment.displayName));
}

/// An attachment as it stands, by its number.
struct StandingAttachment {
    AttachmentRecord record;
    qint64 position = 0;
};

QHash<qint64, StandingAttachment> standingAttachments(Connection &connection, ItemId item) {
    QHash<qint64, StandingAttachment> standing;
    connection.each(sql::attachments, {{"item", item}}, [&standing](const Row &row) {
        standing.insert(row.number(0), {.record = attachmentFrom(row), .position = row.number(7)});
    });
    return standing;
}

/// Positions only have to ascend: an attachment keeps its own wherever it can, since a write of its row writes its
/// data.
void updateAttachments(Connection &connection, ItemId item, const QList<AttachmentRecord> &attachments) {
    QHash<qint64, StandingAttachment> standing = standingAttachments(connection, item);
    qint64 last = -1;
    bool changed = false;
    for (const AttachmentRecord &attachment : attachments) {
        if (attachment.id == 0) {
            addAttachment(connection, item, attachment, ++last);
            changed = true;
            continue;
        }
        const StandingAttachment known = standing.take(attachment.id);
        const qint64 position = std::max(known.position, last + 1);
        if (position != known.position || !sameBesidesData(known.record, attachment))
            saveAttachment(connection, item, attachment, position);
        last = position;
    }
    for (auto left = standing.keyBegin(); left != standing.keyEnd(); ++left) {
        connection.run(sql::removeAttachment, {{"id", *left}, {"item", item}});
        changed = true;
    }
    if (changed)
        connection.run(sql::sumAttachments, {{"item", item}});
}

/// Which of the columns in indexes differ from what stands, one bit each in their order.
quint32 changedKeys(Connection &connection, const ItemRecord &fields) {
    quint32 changed = 0;
    connection.each(sql::itemKeys(), {{"id", fields.id}}, [&](const Row &row) {
        int at = 0;
        for (const ItemColumn &column : itemColumns())
            if (column.hasIndex()) {
                const bool isOther = column.isIndexed() ? row.text(at) != keyOf(fieldOf(fields, column))
                                                        : row[at] != storedKey(fields, column);
                if (isOther)
                    changed |= quint32{1} << at;
                ++at;
            }
    });
    return changed;
}

Value normalizedValue(const Property &property) {
    const Value &value = property.value;
    if (value.isEmpty() || value.isNull() || value.isMissing())
        return {};
    switch (property.type) {
    case PropertyType::Number:
        return toDouble(value);
    case PropertyType::Date:
        return toDateTime(value);
    case PropertyType::YesNo:
        return toBool(value);
    case PropertyType::Text:
        return toText(value);
    }
    throw Failure(failures::invalidCall,
                  QStringLiteral("The property \"%1\" has the type %2, which is none of 1, 3, 5 and 6.")
                      .arg(property.name)
                      .arg(static_cast<int>(property.type)));
}

} // namespace

qint64 takeNumbers(Connection &connection, qint64 count) {
    connection.run(sql::takeNumbers, {{"count", count}});
    return connection.value(sql::lastNumber).value_or(0).toLongLong() - count + 1;
}

QList<Property> normalized(const QList<Property> &properties) {
    QList<Property> result;
    result.reserve(properties.size());
    QSet<QString> names;
    for (const Property &property : properties) {
        if (names.contains(foldedKey(property.name)))
            throw Failure(failures::invalidCall,
                          QStringLiteral("The item has two properties named \"%1\".").arg(property.name));
        names.insert(foldedKey(property.name));
        result.append({.name = property.name, .type = property.type, .value = normalizedValue(property)});
    }
    return result;
}

Sizes sizesOf(const ItemParts &parts) {
    Sizes sizes;
    sizes.bodies = parts.bodies ? bytesOf(*parts.bodies) : 0;
    for (const AttachmentRecord &attachment : parts.attachments.value_or(QList<AttachmentRecord>())) {
        ++sizes.attachmentCount;
        sizes.attachments += attachment.data.size();
    }
    sizes.original = parts.original ? parts.original->size() : 0;
    return sizes;
}

Sizes insertItem(Connection &connection, const ItemPlace &place, const ItemRecord &fields, const ItemParts &parts) {
    const Sizes sizes = sizesOf(parts);
    std::vector<Bind> binds{{"id", place.id},
                            {"folder", storedFolder(place.folder)},
                            {"arrival", place.arrival},
                            {"modified_at", fields.modifiedAt.days},
                            {"attachment_count", sizes.attachmentCount},
                            {"body_bytes", sizes.bodies},
                            {"attachment_bytes", sizes.attachments},
                            {"original_bytes", sizes.original}};
    binds.reserve(binds.size() + 2 * itemColumns().size());
    for (const ItemColumn &column : itemColumns()) {
        binds.push_back({column.name, storedField(fields, column)});
        if (column.isIndexed())
            binds.push_back({column.keyName, storedKey(fields, column)});
    }
    connection.run(sql::insertItem(), binds);

    if (parts.bodies && *parts.bodies != Bodies())
        putBodies(connection, place.id, *parts.bodies);
    if (parts.original && !parts.original->isEmpty())
        putOriginal(connection, place.id, *parts.original);
    qint64 position = 0;
    for (const Property &property : parts.properties.value_or(QList<Property>()))
        putProperty(connection, place, foldedKey(property.name), property, position++);
    position = 0;
    for (const AttachmentRecord &attachment : parts.attachments.value_or(QList<AttachmentRecord>()))
        addAttachment(connection, place.id, attachment, position++);
    return sizes;
}

void updateItem(Connection &connection, const ItemRecord &fields, const ItemParts &parts) {
    const quint32 changed = changedKeys(connection, fields);
    std::vector<Bind> binds{{"modified_at", fields.modifiedAt.days}};
    binds.reserve(2 * itemColumns().size());
    quint32 bit = 1;
    for (const ItemColumn &column : itemColumns()) {
        if (column.isIndexed() || !column.hasIndex())
            binds.push_back({column.name, storedField(fields, column)});
        if (!column.hasIndex())
            continue;
        if ((changed & bit) != 0)
            binds.push_back({column.indexedName(), storedKey(fields, column)});
        bit <<= 1;
    }
    binds.push_back({"id", fields.id});
    connection.run(sql::updateItem(changed), binds);

    if (parts.bodies && *parts.bodies != readBodies(connection, fields.id)) {
        putBodies(connection, fields.id, *parts.bodies);
        connection.run(sql::setBodyBytes, {{"bytes", bytesOf(*parts.bodies)}, {"item", fields.id}});
    }
    if (parts.original && *parts.original != readOriginal(connection, fields.id)) {
        putOriginal(connection, fields.id, *parts.original);
        connection.run(sql::setOriginalBytes, {{"bytes", parts.original->size()}, {"item", fields.id}});
    }
    if (parts.properties)
        updateProperties(connection, {.id = fields.id, .folder = fields.folder, .arrival = fields.arrival},
                         *parts.properties);
    if (parts.attachments)
        updateAttachments(connection, fields.id, *parts.attachments);
}

qint64 noteRemoval(Connection &connection, FolderId folder) {
    connection.run(sql::addRemoval, {{"id", folder}});
    return connection.value(sql::removals, {{"id", folder}}).value_or(0).toLongLong();
}

qint64 removeStanding(Connection &connection, ItemId item, FolderId folder) {
    connection.run(sql::removeItem, {{"id", item}});
    return noteRemoval(connection, folder);
}

} // namespace desk
