/// One custom property of an item.
#pragma once

#include "desk/objects/sessionobject.h"
#include "desk/store/records.h"

namespace desk::objects {

class Item;

/// Fails with 91 once the item has no property of its name.
class UserProperty : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ name)
    Q_PROPERTY(int Type READ type)
    Q_PROPERTY(Value Value READ value WRITE setValue)
    Q_PROPERTY(Value Parent READ parent)

  public:
    UserProperty(std::weak_ptr<desk::Session> session, std::shared_ptr<Item> item, QString name);

    [[nodiscard]] QString name() const { return m_name; }
    [[nodiscard]] int type() const { return static_cast<int>(property().type); }
    /// As the type says: text, a double, a date-time or a boolean; one that was never set is the empty text, 0, the
    /// zero date or False.
    [[nodiscard]] Value value() const;
    /// Fails with 13 for a value that the type can't hold.
    void setValue(const Value &value);
    [[nodiscard]] Value parent() const;

    Q_INVOKABLE void Delete();

  private:
    [[nodiscard]] const Property &property() const;

    std::shared_ptr<Item> m_item;
    QString m_name;
};

} // namespace desk::objects
