/// The address book: one list a contacts folder.
#pragma once

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

} // namespace desk::objects
