#include "desk/objects/delivery.h"

#include "desk/objects/itemmessage.h"

namespace desk {

ItemRecord deliver(Store &store, FolderId folder, const QByteArray &message) {
    const IncomingItem item = incomingItem(message);
    return store.insert(folder, item.fields, item.parts);
}

} // namespace desk
