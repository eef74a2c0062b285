#include "desk/content/storechanges.h"

#include "desk/content/mailboxes.h"

namespace desk {

bool StoreChanges::look() {
    bool isChanged = false;
    for (Store *store : m_mailboxes.stores()) {
        const StoreRevision standing = store->revision();
        isChanged |= std::exchange(m_seen[store], standing) != standing;
    }
    if (isChanged)
        Q_EMIT changed();
    return isChanged;
}

} // namespace desk
