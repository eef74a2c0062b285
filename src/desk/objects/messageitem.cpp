#include "desk/objects/messageitem.h"

#include "desk/objects/addressentry.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/session.h"

namespace desk::objects {

Value MessageItem::sender() const {
    const ItemRecord &item = fields();
    if (item.senderName.isEmpty() && item.senderAddress.isEmpty())
        return Value::nothing();
    return automation::wrap(
        AddressEntry::ofSender(weakSession(), item.senderName, item.senderAddress, item.senderAddressType));
}

Value MessageItem::saveSentMessageFolder() const {
    const std::shared_ptr<desk::Session> open = session();
    const QString &entryId = fields().saveSentFolder;
    if (Store *place = open->storeOf(entryId)) {
        if (const auto folder = place->folderByEntryId(entryId))
            return automation::wrap(open->folder(*place, folder->id));
    }
    const FolderRecord sentItems = open->specialFolder(SpecialFolder::SentItems);
    return automation::wrap(open->folder(open->mailbox(), sentItems.id));
}

void MessageItem::setSaveSentMessageFolder(const Value &folder) {
    const auto chosen = automation::exposedOf<MAPIFolder>(folder);
    put(&ItemRecord::saveSentFolder, chosen ? chosen->entryId() : QString(), "SaveSentMessageFolder");
}

void MessageItem::sign(DateTime receivedAt) {
    const std::shared_ptr<desk::Session> open = session();
    const Profile &profile = open->profile();
    ItemContent &item = content();
    item.set(&ItemRecord::senderName, profile.user());
    item.set(&ItemRecord::senderAddress, profile.address());
    item.set(&ItemRecord::senderAddressType, QStringLiteral("SMTP"));
    item.set(&ItemRecord::sent, true);
    item.set(&ItemRecord::sentAt, Clock::now());
    item.set(&ItemRecord::receivedAt, receivedAt);
}

} // namespace desk::objects
