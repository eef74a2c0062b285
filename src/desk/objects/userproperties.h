/// The custom properties of an item.
#pragma once

#include "desk/objects/sessionobject.h"

namespace desk::objects {

class Item;

/// Names match without regard to case.
class UserProperties : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)
    Q_PROPERTY(Value Parent READ parent)

  public:
    UserProperties(std::weak_ptr<desk::Session> session, std::shared_ptr<objects::Item> item);

    [[nodiscard]] int count() const;
    [[nodiscard]] Value parent() const;

    /// Nothing for a missing name.
    Q_INVOKABLE Value Find(const QString &Name, const Value &Custom = Value::Missing{});
    /// By position from 1 (9 beyond the end), or by name (91 for a missing one).
    Q_INVOKABLE Value Item(const Value &Index);
    /// Types: 1 text, 3 number, 5 date-time, 6 yes or no. The existing property where the name and the type stand
    /// already; 5 where the name stands with another type.
    Q_INVOKABLE Value Add(const QString &Name, int Type, const Value &AddToFolderFields = Value::Missing{},
                          const Value &DisplayFormat = Value::Missing{});
    Q_INVOKABLE void Remove(int Index);

  private:
    [[nodiscard]] Value named(const QString &name) const;

    std::shared_ptr<objects::Item> m_item;
};

} // namespace desk::objects
