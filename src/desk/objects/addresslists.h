/// The address book: one list a contacts folder.
#pragma once

#include "desk/objects/directory.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class AddressLists : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)

  public:
    using SessionObject::SessionObject;

    [[nodiscard]] int count() const;
    /// By position from 1, or by name (0x8004010F for a missing one).
    Q_INVOKABLE Value Item(const Value &Index);
};

/// Its identifier ends in the entry identifier of its folder; do not change: programs cut it.
class AddressList : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ name)
    Q_PROPERTY(QString ID READ id)

  public:
    AddressList(std::weak_ptr<desk::Session> session, ContactsFolder folder);

    [[nodiscard]] QString name() const { return m_folder.folder.name; }
    [[nodiscard]] QString id() const;
    Q_INVOKABLE Value AddressEntries(const Value &Index = Value::Missing{});

  private:
    ContactsFolder m_folder;
};

/// The people of one list, in order of arrival.
class AddressEntries : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)

  public:
    AddressEntries(std::weak_ptr<desk::Session> session, ContactsFolder folder);

    [[nodiscard]] int count() const;
    /// By position from 1, or by name (0x8004010F for a missing one).
    Q_INVOKABLE Value Item(const Value &Index);

  private:
    ContactsFolder m_folder;
};

} // namespace desk::objects
