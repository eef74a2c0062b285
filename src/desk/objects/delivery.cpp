#include "desk/objects/delivery.h"

#include "desk/objects/automaticmail.h"
#include "desk/objects/itemmessage.h"
#include "desk/objects/mailrules.h"
#include "desk/objects/session.h"

namespace desk {

Delivered deliver(Session &session, const FolderPlace &place, const QByteArray &message) {
    IncomingItem item = incomingItem(message);
    Delivered delivered{.item = {}, .place = place, .kind = automaticKind(message, ownMail(session))};
    if (delivered.kind != AutomaticKind::None) {
        item.parts.properties = QList<Property>{{mailproperty::automatic, PropertyType::Text, nameOf(delivered.kind)}};
        const bool isInbox = place.store == &session.mailbox() && place.folder.special == SpecialFolder::Inbox;
        if (isInbox && mailRules(session.profile()).sortsAutomatic)
            delivered.place = folderFor(session, delivered.kind);
    }
    // Before the mail is there, for a program may answer it at once.
    rememberSender(session, item.fields.senderAddress, delivered.kind);
    delivered.item = delivered.place.store->insert(delivered.place.folder.id, item.fields, item.parts);
    return delivered;
}

} // namespace desk
