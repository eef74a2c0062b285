/// The folders below a folder, or the top folders of the session.
#pragma once

#include "desk/content/filter.h"
#include "desk/objects/sessionobject.h"
#include "desk/store/records.h"

namespace desk {
class Store;
}

namespace desk::objects {

class MAPIFolder;

class Folders : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(int Count READ count)
    Q_PROPERTY(Value Parent READ parent)

  public:
    /// Those below `parent`; without one, the top folders.
    explicit Folders(std::weak_ptr<desk::Session> session, std::shared_ptr<MAPIFolder> parent = nullptr);

    [[nodiscard]] int count() const { return static_cast<int>(all().size()); }
    [[nodiscard]] Value parent() const;

    /// By position from 1, or by name, compared exactly. Fails with 0x8004010F for a name that is missing.
    Q_INVOKABLE Value Item(const Value &Index);
    /// `Type` is a default folder's number, whose kind of items the new folder takes; left out, the kind of the parent.
    /// Fails with 457 for a name that is taken.
    Q_INVOKABLE Value Add(const QString &Name, const Value &Type = Value::Missing{});
    /// The first folder whose name meets a filter such as `[Name] > 12` (see filter.h), by the order in which they were
    /// made; Nothing where there is none. Other fields are refused as the filter is.
    Q_INVOKABLE Value Find(const QString &Filter);
    Q_INVOKABLE Value FindNext();
    /// From the first to the last of those that were there when the walk began.
    Q_INVOKABLE Value GetFirst();
    Q_INVOKABLE Value GetNext();

  private:
    using Place = std::pair<Store *, FolderId>;

    [[nodiscard]] QList<Place> all() const;
    [[nodiscard]] Value opened(const Place &place) const;
    [[nodiscard]] QList<Place> findAll(const Filter &filter) const;

    std::shared_ptr<MAPIFolder> m_parent;
    /// What is left to be looked at for the filter last given.
    QList<Place> m_candidates;
    Filter m_filter;
    QList<Place> m_walk;
    qsizetype m_next = 0;
};

} // namespace desk::objects
