/// The attachments of an item.
#pragma once

#include "desk/content/itemcontent.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class Item;

class Attachments : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)
    Q_PROPERTY(Value Parent READ parent)

  public:
    Attachments(std::weak_ptr<desk::Session> session, std::shared_ptr<objects::Item> item);

    [[nodiscard]] int count() const;
    [[nodiscard]] Value parent() const;

    /// By position from 1.
    Q_INVOKABLE Value Item(const Value &Index);
    /// Copies a file, or embeds an item (type 5). The display name is the file's own, or the item's subject, where none
    /// is given. Fails with 53 for a missing file.
    Q_INVOKABLE Value Add(const Value &Source, const Value &Type = Value::Missing{},
                          const Value &Position = Value::Missing{}, const Value &DisplayName = Value::Missing{});
    Q_INVOKABLE void Remove(int Index);

  private:
    Value made(const ItemContent::AttachmentPtr &attachment) const;

    std::shared_ptr<objects::Item> m_item;
};

} // namespace desk::objects
