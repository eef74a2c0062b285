/// One list of the address book.
#pragma once

#include "desk/content/directory.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

/// Its identifier ends in the entry identifier of its folder; do not change: programs cut it.
class AddressList : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ name)
    Q_PROPERTY(QString ID READ id CONSTANT)

  public:
    AddressList(std::weak_ptr<desk::Session> session, ContactsFolder folder);

    [[nodiscard]] QString name() const { return m_folder.folder.name; }
    [[nodiscard]] QString id() const;
    Q_INVOKABLE Value AddressEntries(const Value &Index = Value::Missing{});

  private:
    ContactsFolder m_folder;
};

} // namespace desk::objects
