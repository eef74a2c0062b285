/// Mail that comes in.
#pragma once

#include "desk/content/folderpath.h"
#include "desk/mail/automatic.h"

namespace desk {

/// A message that has come in.
struct Delivered {
    ItemRecord item;
    /// Where it lies: the folder that was named, unless the rules have another one for automatic mail.
    FolderPlace place;
    AutomaticKind kind = AutomaticKind::None;
};

/// Puts a message into a folder, unread, with the message as it came; one commit. Any bytes are a message. What is
/// automatic says so in a custom property; its sender is remembered (see automaticmail.h).
Delivered deliver(Mailboxes &mailboxes, const FolderPlace &place, const QByteArray &message);

} // namespace desk
