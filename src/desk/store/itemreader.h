/// Reads the parts of one item.
#pragma once

#include "desk/store/connection.h"
#include "desk/store/records.h"

namespace desk {

Bodies readBodies(Connection &connection, ItemId item);
QByteArray readOriginal(Connection &connection, ItemId item);
QList<Property> readProperties(Connection &connection, ItemId item);
/// Without their data.
QList<AttachmentRecord> readAttachments(Connection &connection, ItemId item);
QByteArray readAttachmentData(Connection &connection, qint64 attachment);

/// An attachment from a row of `sql::attachments`, without its data.
AttachmentRecord attachmentFrom(const Row &row);

/// A property's value from what the database holds of it.
Value valueOf(PropertyType type, const QVariant &stored);

} // namespace desk
