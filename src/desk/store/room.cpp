#include "desk/store/room.h"

#include "desk/store/itemcolumns.h"
#include "platform/storage/access.h"

namespace desk {

namespace {

constexpr qint64 megabyte = qint64{1024} * 1024;

constexpr qint64 leftFree(Growth growth) { return growth == Growth::NewItem ? 4 * megabyte : megabyte; }

/// What is written stands in the log first, and in the file as well when the log is taken in.
constexpr qint64 timesWritten = 2;

qint64 bytesOf(const QString &text) { return text.size() * 2; }

} // namespace

bool hasRoom(const QString &storePath, Growth growth, qint64 bytes) {
    const std::optional<qint64> room = storage::roomFor(storePath);
    return !room || *room >= leftFree(growth) + timesWritten * bytes;
}

Failure noRoom(const QString &storePath) {
    return {failures::noDiskSpace,
            QStringLiteral("The store %1 cannot be written: its disk is full but for the little that is kept so that "
                           "items can be deleted; make room and try again. Nothing was changed.")
                .arg(storePath)};
}

qint64 weightOf(const ItemRecord &fields) {
    qint64 bytes = 0;
    for (const ItemColumn &column : itemColumns())
        if (const auto *text = std::get_if<QString ItemRecord::*>(&column.member))
            bytes += bytesOf(fields.**text);
    return bytes;
}

qint64 weightOf(const ItemParts &parts) {
    qint64 bytes = parts.original ? parts.original->size() : 0;
    if (parts.bodies)
        bytes += bytesOf(parts.bodies->plain) + bytesOf(parts.bodies->html);
    for (const AttachmentRecord &attachment : parts.attachments.value_or(QList<AttachmentRecord>()))
        bytes += attachment.data.size();
    for (const Property &property : parts.properties.value_or(QList<Property>())) {
        const auto *text = std::get_if<QString>(&property.value.held());
        bytes += bytesOf(property.name) + (text ? bytesOf(*text) : 0);
    }
    return bytes;
}

} // namespace desk
