#include "desk/objects/attachments.h"

#include "desk/content/itemmessage.h"
#include "desk/objects/attachment.h"
#include "desk/objects/item.h"
#include "desk/objects/session.h"
#include "platform/value/convert.h"

#include <QFileInfo>
#include <QMimeDatabase>

namespace desk::objects {
namespace {

AttachmentRecord embedded(Item &item, const Profile &profile) {
    AttachmentRecord record;
    record.type = static_cast<qint32>(AttachmentType::EmbeddedMessage);
    record.displayName = item.subject();
    record.mimeType = QStringLiteral("message/rfc822");
    record.data = messageBytes(item.content(), profile);
    return record;
}

AttachmentRecord fileAttachment(const QString &path) {
    AttachmentRecord record;
    record.displayName = QFileInfo(nativePath(path)).fileName();
    record.mimeType = QMimeDatabase().mimeTypeForFile(record.displayName, QMimeDatabase::MatchExtension).name();
    record.data = readFile(path);
    return record;
}

QString safeName(const AttachmentRecord &record, const QString &name) {
    desk::Attachment attachment;
    attachment.type = static_cast<AttachmentType>(record.type);
    attachment.name = name;
    attachment.mimeType = record.mimeType;
    return safeFileName(attachment);
}

} // namespace

Attachments::Attachments(std::weak_ptr<desk::Session> session, std::shared_ptr<objects::Item> item)
    : SessionObject(std::move(session)), m_item(std::move(item)) {}

int Attachments::count() const { return static_cast<int>(m_item->content().attachments().size()); }

Value Attachments::parent() const { return automation::wrap(m_item); }

Value Attachments::made(const ItemContent::AttachmentPtr &attachment) const {
    return automation::wrap(std::make_shared<Attachment>(weakSession(), m_item, attachment));
}

Value Attachments::Item(const Value &Index) {
    const QList<ItemContent::AttachmentPtr> &attachments = m_item->content().attachments();
    return made(attachments.at(positionFrom(Index, attachments.size())));
}

Value Attachments::Add(const Value &Source, const Value & /*Type*/, const Value & /*Position*/,
                       const Value &DisplayName) {
    AttachmentRecord record;
    if (Source.isObject()) {
        const auto item = automation::exposedOf<objects::Item>(Source);
        if (!item)
            throw Failure(failures::objectNotSet);
        record = embedded(*item, session()->profile());
    } else {
        record = fileAttachment(toText(Source));
    }
    record.fileName = safeName(record, record.displayName);
    const QString displayName = DisplayName.isMissing() ? QString() : toText(DisplayName);
    if (!displayName.isEmpty())
        record.displayName = displayName;
    return made(m_item->content().addAttachment(record));
}

void Attachments::Remove(int Index) {
    const QList<ItemContent::AttachmentPtr> attachments = m_item->content().attachments();
    m_item->content().removeAttachment(attachments.at(positionFrom(Index, attachments.size())));
}

} // namespace desk::objects
