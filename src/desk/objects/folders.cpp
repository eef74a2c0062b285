#include "desk/objects/folders.h"

#include "desk/objects/itemkinds.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/namespace.h"
#include "desk/objects/session.h"
#include "platform/value/convert.h"

namespace desk::objects {

Folders::Folders(std::weak_ptr<desk::Session> session, std::shared_ptr<MAPIFolder> parent)
    : SessionObject(std::move(session)), m_parent(std::move(parent)) {}

QList<Folders::Place> Folders::all() const {
    const std::shared_ptr<desk::Session> open = session();
    QList<Place> folders;
    if (!m_parent) {
        for (Store *store : open->stores())
            folders.append({store, store->root().id});
        return folders;
    }
    if (&m_parent->store() == &open->mailbox())
        open->makeSpecialFolders();
    for (const FolderRecord &record : m_parent->store().childFolders(m_parent->id()))
        folders.append({&m_parent->store(), record.id});
    return folders;
}

Value Folders::parent() const {
    return m_parent ? automation::wrap(m_parent) : automation::wrap(session()->nameSpace());
}

Value Folders::Item(const Value &Index) {
    const std::shared_ptr<desk::Session> open = session();
    if (!Index.isText()) {
        const QList<Place> folders = all();
        return opened(folders.at(positionFrom(Index, folders.size())));
    }
    const QString name = toText(Index);
    if (m_parent) {
        if (&m_parent->store() == &open->mailbox())
            open->makeSpecialFolders();
        if (const auto record = m_parent->store().findFolder(m_parent->id(), name))
            return automation::wrap(open->folder(m_parent->store(), record->id));
    } else {
        for (Store *store : open->stores()) {
            const FolderRecord root = store->root();
            if (root.name == name)
                return automation::wrap(open->folder(*store, root.id));
        }
    }
    throw Failure(failures::notFound, QStringLiteral("There is no folder \"%1\" here.").arg(name));
}

Value Folders::Add(const QString &Name, const Value &Type) {
    const std::shared_ptr<desk::Session> open = session();
    if (!m_parent)
        throw Failure(failures::accessDenied, QStringLiteral("Top folders can't be added."));
    if (Name.isEmpty())
        throw Failure(failures::invalidCall, QStringLiteral("A folder needs a name."));
    // An ordinary folder of this name would stand in a default folder's place.
    if (&m_parent->store() == &open->mailbox())
        open->makeSpecialFolders();
    FolderRecord record;
    record.parent = m_parent->id();
    record.name = Name;
    record.defaultItemType = Type.isMissing() ? m_parent->defaultItemType() : itemTypeOfFolderType(toInt32(Type));
    record = m_parent->store().addFolder(record);
    return automation::wrap(open->folder(m_parent->store(), record.id));
}

Value Folders::opened(const Place &place) const {
    return automation::wrap(session()->folder(*place.first, place.second));
}

QList<Folders::Place> Folders::findAll(const Filter &filter) const {
    const auto bound =
        std::ranges::find_if(filter, [](const FilterCondition &each) { return each.least().has_value(); });
    if (!m_parent || bound == filter.end())
        return all();
    const std::shared_ptr<desk::Session> open = session();
    QList<Place> folders;
    for (const FolderRecord &record : m_parent->store().childFoldersThatMayReach(m_parent->id(), *bound->least()))
        folders.append({&m_parent->store(), record.id});
    return folders;
}

Value Folders::Find(const QString &Filter) {
    const desk::Filter conditions = parseFilter(Filter);
    for (const FilterCondition &condition : conditions) {
        if (condition.field.compare(QStringLiteral("Name"), Qt::CaseInsensitive) != 0)
            refuseFilter(Filter);
    }
    m_filter = conditions;
    m_candidates = findAll(conditions);
    return FindNext();
}

Value Folders::FindNext() {
    const std::shared_ptr<desk::Session> open = session();
    while (!m_candidates.isEmpty()) {
        const Place place = m_candidates.takeFirst();
        // One that was removed in the meantime is passed over.
        const std::optional<QString> name = AttemptOr(
            [&] { return std::optional<QString>(place.first->folder(place.second).name); }, std::optional<QString>());
        if (name && std::ranges::all_of(m_filter, [&](const FilterCondition &each) { return each.holds(*name); }))
            return opened(place);
    }
    return Value::nothing();
}

Value Folders::GetFirst() {
    m_walk = all();
    m_next = 0;
    return GetNext();
}

Value Folders::GetNext() { return m_next < m_walk.size() ? opened(m_walk.at(m_next++)) : Value::nothing(); }

} // namespace desk::objects
