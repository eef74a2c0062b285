/// What one opened item holds: its fields and parts as its user sees them, with the changes that are not saved.
#pragma once

#include "desk/store/store.h"

namespace desk {

/// Parts beside the fields are read when they are first asked for. A save is one commit with the optimistic check of
/// the store, and writes only the parts that changed.
class ItemContent {
  public:
    /// An item of the store, or with `record.id` 0 a new one for the folder `record.folder`.
    ItemContent(Store &store, ItemRecord record);

    [[nodiscard]] Store &store() const { return *m_store; }
    [[nodiscard]] const ItemRecord &fields() const { return m_fields; }
    [[nodiscard]] bool isNew() const { return m_fields.id == 0; }
    /// Whether a save would write anything.
    [[nodiscard]] bool isChanged() const { return m_changed; }

    /// Sets a field; false when it held the value already.
    template <class T>
    bool set(T ItemRecord::*field, const T &value) {
        if (m_fields.*field == value)
            return false;
        m_fields.*field = value;
        m_changed = true;
        return true;
    }
    /// Where a new item will be saved. REQUIRES: isNew().
    void setFolder(FolderId folder) { m_fields.folder = folder; }
    /// Gives a new item all its content but its place. REQUIRES: isNew().
    void fill(const ItemRecord &fields, const ItemParts &parts);
    /// Puts a new item into a folder of another store. REQUIRES: isNew().
    void setPlace(Store &store, FolderId folder);

    const Bodies &bodies();
    void setBodies(const Bodies &bodies);

    /// Invariant: one of a name, whatever its case.
    const QList<Property> &properties();
    [[nodiscard]] const Property *findProperty(const QString &name);
    /// Adds or replaces the property of that name.
    void putProperty(const Property &property);
    void removeProperty(const QString &name);

    using AttachmentPtr = std::shared_ptr<AttachmentRecord>;
    /// The same records for as long as they are part of the item.
    const QList<AttachmentPtr> &attachments();
    [[nodiscard]] QByteArray attachmentData(const AttachmentRecord &attachment);
    AttachmentPtr addAttachment(const AttachmentRecord &attachment);
    void removeAttachment(const AttachmentPtr &attachment);
    void renameAttachment(const AttachmentPtr &attachment, const QString &displayName);

    /// The message as it came; empty for an item that was made here.
    [[nodiscard]] QByteArray original();
    void setOriginal(const QByteArray &original);

    /// Bytes: the stored size, or what a new item holds so far.
    [[nodiscard]] qint64 size();

    /// Writes what changed, or makes the item. Failures as `Store::save`.
    void save();
    /// Forgets the changes and reads the item anew. Fails with `itemGone`. REQUIRES: not isNew().
    void reload();
    /// Goes on with the item at a new place or version; parts are read anew.
    void moveTo(Store &store, const ItemRecord &record);
    /// Everything as it stands here, for a new item.
    [[nodiscard]] ItemParts allParts();

  private:
    [[nodiscard]] ItemParts changedParts() const;
    void forgetParts();

    Store *m_store;
    ItemRecord m_fields;
    bool m_changed = false;

    std::optional<Bodies> m_bodies;
    bool m_bodiesChanged = false;
    std::optional<QList<Property>> m_properties;
    bool m_propertiesChanged = false;
    std::optional<QList<AttachmentPtr>> m_attachments;
    bool m_attachmentsChanged = false;
    std::optional<QByteArray> m_newOriginal;
};

} // namespace desk
