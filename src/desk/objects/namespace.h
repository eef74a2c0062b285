/// The session as clients see it: the way to folders, items and people.
#pragma once

#include "desk/objects/sessionobject.h"

namespace desk::objects {

class NameSpace : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Type READ type)

  public:
    using SessionObject::SessionObject;

    [[nodiscard]] QString type() const { return QStringLiteral("MAPI"); }

    /// The top folders: the mailbox and the public folders.
    Q_INVOKABLE Value Folders(const Value &Index = Value::Missing{});
    Q_INVOKABLE Value GetDefaultFolder(int FolderType);
    /// Both fail with 0x8004010F where nothing has the identifier, or not in the named store.
    Q_INVOKABLE Value GetFolderFromID(const QString &EntryID, const Value &StoreID = Value::Missing{});
    Q_INVOKABLE Value GetItemFromID(const QString &EntryID, const Value &StoreID = Value::Missing{});
    Q_INVOKABLE Value CreateRecipient(const QString &Name);
    /// The default folder of a person. Fails with 0x8004010F for anybody but the mailbox's own: no other mailbox is
    /// open.
    Q_INVOKABLE Value GetSharedDefaultFolder(const Value &Recipient, int FolderType);
    /// Lets the person choose a folder; Nothing on cancel, and where nobody can be asked. Others are served meanwhile.
    Q_INVOKABLE Value PickFolder();
    Q_INVOKABLE Value CurrentUser();
    Q_INVOKABLE Value AddressLists(const Value &Index = Value::Missing{});
    /// Sends what lies submitted in the Outbox; gives the number of messages.
    Q_INVOKABLE int DeliverNow();
};

} // namespace desk::objects
