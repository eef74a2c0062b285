/// The people of one list of the address book.
#pragma once

#include "desk/content/directory.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

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
