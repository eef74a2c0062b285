#include "desk/objects/attachment.h"

#include "desk/content/itemmessage.h"
#include "desk/objects/item.h"

namespace desk::objects {

Attachment::Attachment(std::weak_ptr<desk::Session> session, std::shared_ptr<Item> item,
                       ItemContent::AttachmentPtr attachment)
    : SessionObject(std::move(session)), m_item(std::move(item)), m_attachment(std::move(attachment)) {}

AttachmentRecord &Attachment::record() const {
    if (!m_item->content().attachments().contains(m_attachment))
        throw Failure(failures::itemGone);
    return *m_attachment;
}

int Attachment::index() const { return static_cast<int>(m_item->content().attachments().indexOf(m_attachment)) + 1; }

void Attachment::setDisplayName(const QString &name) {
    if (record().displayName != name)
        m_item->content().renameAttachment(m_attachment, name);
}

int Attachment::size() const {
    return static_cast<int>(std::min<qint64>(record().size, std::numeric_limits<int>::max()));
}

Value Attachment::parent() const { return automation::wrap(m_item); }

void Attachment::SaveAsFile(const QString &Path) { writeFile(Path, m_item->content().attachmentData(record())); }

void Attachment::Delete() {
    static_cast<void>(record());
    m_item->content().removeAttachment(m_attachment);
}

} // namespace desk::objects
