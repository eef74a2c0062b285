/// Use of the safe-object library: guarded counterparts of the host's items and address entries, through which the
/// system reads senders and bodies and sends its own mail.
///
/// The library comes with the client tools and may be missing; every use first asks `fncSetupSafeUtils`.
#pragma once

#include "orvelle/host/items.h"

/// A wrapper of the library around one item.
class SafeItem : public host::Handle {
  public:
    using Handle::Handle;
    void Item(const host::Item &oui) const { put("Item", oui); }
    [[nodiscard]] host::AddressEntry Sender() const { return get("Sender"); }
    [[nodiscard]] QString Body() const { return text("Body"); }
    [[nodiscard]] QString HTMLBody() const { return text("HTMLBody"); }
    [[nodiscard]] QString Subject() const { return text("Subject"); }
    [[nodiscard]] QString Email1Address() const { return text("Email1Address"); }
    void AuthKey() const;
    /// Type 3 is the whole message as a file.
    void SaveAs(const QString &path, qint32 type) const { call("SaveAs", {path, type}); }
    void send() const { call("send"); }
};

/// True if the library is there. Where it isn't, the person is asked once whether to install it.
bool fncSetupSafeUtils();
/// Lets go of what the library holds for this process.
void subCleanupSafeUtils();
/// Sends what lies in the Outbox. REQUIRES: `fncSetupSafeUtils` was true.
void subDeliverNow();

/// New wrappers; they fail with 429 where the library is missing.
SafeItem fncSafeMailItem(const host::Item &oui);
SafeItem fncSafePostItem(const host::Item &oui);
SafeItem fncSafeContactItem(const host::Item &oui);

/// The sender's name; empty without the library and on any failure.
QString fncGetSenderName(const host::Item &ouiMail);

/// The contact behind an address entry, by the identifier in its tail or by its address; Nothing when there is none.
host::ContactItem fncFindContact(const host::AddressEntry &entry);
/// The same with the entry's address in hand.
host::ContactItem fncFindContact(const host::AddressEntry &entry, const QString &strAddress);
