#include "desk/transport/delivery.h"

#include "desk/content/itemmessage.h"
#include "desk/content/mailboxes.h"
#include "desk/transport/automaticmail.h"
#include "desk/transport/mailrules.h"

namespace desk {

Delivered deliver(Mailboxes &mailboxes, const FolderPlace &place, const QByteArray &message) {
    IncomingItem item = incomingItem(message);
    Delivered delivered{.item = {}, .place = place, .kind = automaticKind(message, ownMail(mailboxes))};
    if (delivered.kind != AutomaticKind::None) {
        item.parts.properties = QList<Property>{{mailproperty::automatic, PropertyType::Text, nameOf(delivered.kind)}};
        const bool isInbox = place.store == &mailboxes.mailbox() && place.folder.special == SpecialFolder::Inbox;
        if (isInbox && mailRules(mailboxes.profile()).sortsAutomatic)
            delivered.place = folderFor(mailboxes, delivered.kind);
    }
    // Before the mail is there, for a program may answer it at once.
    rememberSender(mailboxes, item.fields.senderAddress, delivered.kind);
    delivered.item = delivered.place.store->insert(delivered.place.folder.id, item.fields, item.parts);
    return delivered;
}

} // namespace desk
