/// Between items and Internet messages.
#pragma once

#include "desk/content/itemcontent.h"
#include "desk/content/profile.h"
#include "desk/mail/message.h"

namespace desk {

/// The item's fields and parts for a message that has come in, which is kept as it came.
struct IncomingItem {
    ItemRecord fields;
    ItemParts parts;
};
IncomingItem incomingItem(const QByteArray &bytes);

/// An item as a message to be sent: from the profile's own person, or on behalf of another.
Message outgoingMessage(ItemContent &item, const Profile &profile);

/// An item as a message file: the message as it came, for as long as the item says the same.
QByteArray messageBytes(ItemContent &item, const Profile &profile);
/// The item's fields and parts for a message file that is opened: a draft that names who wrote it.
IncomingItem openedItem(const QByteArray &bytes);

/// The addresses of a text such as "Alma Tester <alma@example.org>; bo@example.org". A name alone is its own address.
QList<Address> parseAddresses(const QString &text);

/// Writes a file whole or not at all; a path in either style. Fails with 76 or 70 where it can't be made, 61 where the
/// disk is full.
void writeFile(const QString &path, const QByteArray &bytes);
/// Reads a file; a path in either style. Fails with 53 where there is none, 70 where it can't be read.
QByteArray readFile(const QString &path);
/// The path in the machine's own style.
QString nativePath(const QString &path);

} // namespace desk
