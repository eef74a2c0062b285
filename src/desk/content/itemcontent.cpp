#include "desk/content/itemcontent.h"

namespace desk {
namespace {

bool isNamed(const Property &property, const QString &name) {
    return property.name.compare(name, Qt::CaseInsensitive) == 0;
}

QList<AttachmentRecord> recordsOf(const QList<ItemContent::AttachmentPtr> &attachments) {
    QList<AttachmentRecord> records;
    for (const auto &attachment : attachments)
        records.append(*attachment);
    return records;
}

} // namespace

ItemContent::ItemContent(Store &store, ItemRecord record) : m_store(&store), m_fields(std::move(record)) {
    if (!isNew())
        return;
    m_bodies.emplace();
    m_properties.emplace();
    m_attachments.emplace();
}

void ItemContent::fill(const ItemRecord &fields, const ItemParts &parts) {
    const FolderId folder = m_fields.folder;
    m_fields = fields;
    m_fields.folder = folder;
    m_changed = true;
    if (parts.bodies)
        setBodies(*parts.bodies);
    for (const Property &property : parts.properties.value_or(QList<Property>()))
        putProperty(property);
    for (const AttachmentRecord &attachment : parts.attachments.value_or(QList<AttachmentRecord>()))
        addAttachment(attachment);
    m_newOriginal = parts.original;
}

void ItemContent::setPlace(Store &store, FolderId folder) {
    m_store = &store;
    m_fields.folder = folder;
}

const Bodies &ItemContent::bodies() {
    if (!m_bodies)
        m_bodies = m_store->bodies(m_fields.id);
    return *m_bodies;
}

void ItemContent::setBodies(const Bodies &bodies) {
    m_bodies = bodies;
    m_bodiesChanged = m_changed = true;
}

const QList<Property> &ItemContent::properties() {
    if (!m_properties)
        m_properties = m_store->properties(m_fields.id);
    return *m_properties;
}

const Property *ItemContent::findProperty(const QString &name) {
    properties();
    for (const Property &property : std::as_const(*m_properties)) {
        if (isNamed(property, name))
            return &property;
    }
    return nullptr;
}

void ItemContent::putProperty(const Property &property) {
    properties();
    const auto standing = std::find_if(m_properties->begin(), m_properties->end(),
                                       [&](const Property &each) { return isNamed(each, property.name); });
    if (standing != m_properties->end())
        *standing = property;
    else
        m_properties->append(property);
    m_propertiesChanged = m_changed = true;
}

void ItemContent::removeProperty(const QString &name) {
    properties();
    if (m_properties->removeIf([&](const Property &each) { return isNamed(each, name); }) > 0)
        m_propertiesChanged = m_changed = true;
}

const QList<ItemContent::AttachmentPtr> &ItemContent::attachments() {
    if (!m_attachments) {
        m_attachments.emplace();
        if (m_fields.attachmentCount > 0) {
            for (const AttachmentRecord &record : m_store->attachments(m_fields.id))
                m_attachments->append(std::make_shared<AttachmentRecord>(record));
        }
    }
    return *m_attachments;
}

QByteArray ItemContent::attachmentData(const AttachmentRecord &attachment) {
    return attachment.id == 0 ? attachment.data : m_store->attachmentData(attachment.id);
}

ItemContent::AttachmentPtr ItemContent::addAttachment(const AttachmentRecord &attachment) {
    attachments();
    auto added = std::make_shared<AttachmentRecord>(attachment);
    added->size = attachment.data.size();
    m_attachments->append(added);
    m_attachmentsChanged = m_changed = true;
    return added;
}

void ItemContent::removeAttachment(const AttachmentPtr &attachment) {
    attachments();
    if (m_attachments->removeOne(attachment))
        m_attachmentsChanged = m_changed = true;
}

void ItemContent::renameAttachment(const AttachmentPtr &attachment, const QString &displayName) {
    attachment->displayName = displayName;
    m_attachmentsChanged = m_changed = true;
}

QByteArray ItemContent::original() {
    if (m_newOriginal)
        return *m_newOriginal;
    return isNew() ? QByteArray() : m_store->original(m_fields.id);
}

void ItemContent::setOriginal(const QByteArray &original) {
    m_newOriginal = original;
    m_changed = true;
}

qint64 ItemContent::size() {
    if (!isNew())
        return m_fields.size;
    qint64 size = bodies().plain.size() + bodies().html.size();
    for (const AttachmentPtr &attachment : attachments())
        size += attachment->size;
    return size;
}

ItemParts ItemContent::changedParts() const {
    ItemParts parts;
    if (m_bodiesChanged)
        parts.bodies = m_bodies;
    if (m_propertiesChanged)
        parts.properties = m_properties;
    if (m_attachmentsChanged)
        parts.attachments = recordsOf(*m_attachments);
    parts.original = m_newOriginal;
    return parts;
}

void ItemContent::save() {
    const ItemParts parts = changedParts();
    m_fields = isNew() ? m_store->insert(m_fields.folder, m_fields, parts) : m_store->save(m_fields, parts);
    m_changed = m_bodiesChanged = m_propertiesChanged = false;
    m_newOriginal.reset();
    if (!m_attachmentsChanged)
        return;
    m_attachmentsChanged = false;
    // The attachments that others hold go on as the stored ones, their data no longer in memory.
    const QList<AttachmentRecord> stored = m_store->attachments(m_fields.id);
    for (qsizetype i = 0; i < std::min(stored.size(), m_attachments->size()); ++i)
        *m_attachments->at(i) = stored.at(i);
}

void ItemContent::reload() {
    const std::optional<ItemRecord> record = m_store->item(m_fields.id);
    if (!record)
        throw Failure(failures::itemGone);
    moveTo(*m_store, *record);
}

void ItemContent::moveTo(Store &store, const ItemRecord &record) {
    m_store = &store;
    m_fields = record;
    forgetParts();
}

void ItemContent::forgetParts() {
    m_changed = m_bodiesChanged = m_propertiesChanged = m_attachmentsChanged = false;
    m_bodies.reset();
    m_properties.reset();
    m_attachments.reset();
    m_newOriginal.reset();
}

ItemParts ItemContent::allParts() {
    ItemParts parts;
    parts.bodies = bodies();
    parts.properties = properties();
    QList<AttachmentRecord> copies = recordsOf(attachments());
    for (AttachmentRecord &copy : copies) {
        copy.data = attachmentData(copy);
        copy.id = 0;
    }
    parts.attachments = copies;
    parts.original = original();
    return parts;
}

} // namespace desk
