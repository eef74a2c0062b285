/// One attachment of an item.
#pragma once

#include "desk/content/itemcontent.h"
#include "desk/objects/sessionobject.h"

namespace desk::objects {

class Item;

/// One attachment. Fails with 0x8004010A once the item has it no more.
class Attachment : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Type READ type)
    Q_PROPERTY(int Index READ index)
    Q_PROPERTY(QString FileName READ fileName)
    Q_PROPERTY(QString DisplayName READ displayName WRITE setDisplayName)
    Q_PROPERTY(int Size READ size)
    Q_PROPERTY(Value Parent READ parent)

  public:
    Attachment(std::weak_ptr<desk::Session> session, std::shared_ptr<Item> item, ItemContent::AttachmentPtr attachment);

    /// 1 by value, 5 embedded item, 6 OLE object.
    [[nodiscard]] int type() const { return record().type; }
    [[nodiscard]] int index() const;
    /// A name that a file of any folder can take.
    [[nodiscard]] QString fileName() const { return record().fileName; }
    /// The name as the sender gave it.
    [[nodiscard]] QString displayName() const { return record().displayName; }
    void setDisplayName(const QString &name);
    [[nodiscard]] int size() const;
    [[nodiscard]] Value parent() const;

    /// Writes the content, for an embedded item the message file. An existing file is replaced.
    Q_INVOKABLE void SaveAsFile(const QString &Path);
    Q_INVOKABLE void Delete();

  private:
    [[nodiscard]] AttachmentRecord &record() const;

    std::shared_ptr<Item> m_item;
    ItemContent::AttachmentPtr m_attachment;
};

} // namespace desk::objects
