/// What is selected in a window on a folder.
#pragma once

#include "desk/objects/sessionobject.h"
#include "desk/store/records.h"

namespace desk {
class Store;
}

namespace desk::objects {

/// The items that were selected when it was asked for, in the order of selection; each opened anew.
class Selection : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)

  public:
    Selection(std::weak_ptr<desk::Session> session, Store &store, QList<ItemId> items);

    [[nodiscard]] int count() const { return static_cast<int>(m_items.size()); }
    /// By position from 1. Fails with 0x8004010A for an item that has gone meanwhile.
    Q_INVOKABLE Value Item(const Value &Index);

  private:
    Store *m_store;
    QList<ItemId> m_items;
};

} // namespace desk::objects
