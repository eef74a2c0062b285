/// Mail that comes in.
#pragma once

#include "desk/store/store.h"

namespace desk {

/// Puts a message into a folder, unread, with the message as it came. Any bytes are a message; one commit.
ItemRecord deliver(Store &store, FolderId folder, const QByteArray &message);

} // namespace desk
