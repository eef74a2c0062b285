/// The items of a folder.
#pragma once

#include "desk/content/filter.h"
#include "desk/objects/sessionobject.h"
#include "desk/store/store.h"

namespace desk::objects {

class MAPIFolder;

/// In order of arrival. Each object watches and searches for itself.
class Items : public SessionObject {
    Q_OBJECT
    Q_CLASSINFO("Events", "ItemAdd")
    Q_PROPERTY(int Count READ count)
    Q_PROPERTY(Value Parent READ parent)

  public:
    Items(std::weak_ptr<desk::Session> session, std::shared_ptr<MAPIFolder> folder);

    [[nodiscard]] int count() const;
    [[nodiscard]] Value parent() const;
    [[nodiscard]] const std::shared_ptr<MAPIFolder> &folder() const { return m_folder; }

    /// By position from 1, or the first one with that subject. Fails with 9 beyond the end, 0x8004010F for a subject
    /// that no item has.
    Q_INVOKABLE Value Item(const Value &Index);
    /// A new unsaved item: of a message class, of a type number, or of the folder's default kind.
    Q_INVOKABLE Value Add(const Value &Type = Value::Missing{});
    /// The first item that meets the filter (see filter.h), and the ones after it; Nothing where there is none.
    Q_INVOKABLE Value Find(const QString &Filter);
    Q_INVOKABLE Value FindNext();
    Q_INVOKABLE Value GetFirst();
    Q_INVOKABLE Value GetNext();
    Q_INVOKABLE Value GetLast();
    /// Deletes the item at a position from 1.
    Q_INVOKABLE void Remove(int Index);

  Q_SIGNALS:
    /// A new item in the folder, whoever put it there: once for each.
    void ItemAdd(const Value &Item);

  protected:
    void connectNotify(const QMetaMethod &signal) override;

  private:
    [[nodiscard]] Store &store() const;
    [[nodiscard]] Value opened(const std::optional<ItemRecord> &record) const;
    [[nodiscard]] Value nextMatch();

    std::shared_ptr<MAPIFolder> m_folder;
    Filter m_filter;
    qint64 m_found = 0;
    qint64 m_next = 0;
};

} // namespace desk::objects
