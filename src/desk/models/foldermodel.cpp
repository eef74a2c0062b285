#include "desk/models/foldermodel.h"

#include "desk/content/mailboxes.h"
#include "desk/content/storechanges.h"
#include "platform/value/failure.h"

#include <QScopeGuard>

namespace desk {

struct FolderModel::Node {
    Node *parent = nullptr;
    Place place{};
    CountedFolder shown{};
    Nodes children{};
    bool isRead = false;
};

namespace {

/// The default folders in the order in which people look for them.
int rankOf(SpecialFolder special) {
    constexpr SpecialFolder order[] = {SpecialFolder::Inbox,     SpecialFolder::Drafts,       SpecialFolder::Outbox,
                                       SpecialFolder::SentItems, SpecialFolder::DeletedItems, SpecialFolder::Calendar,
                                       SpecialFolder::Contacts,  SpecialFolder::Tasks};
    return static_cast<int>(std::ranges::find(order, special) - std::begin(order));
}

bool isBefore(const CountedFolder &left, const CountedFolder &right) {
    const int leftRank = rankOf(left.folder.special);
    const int rightRank = rankOf(right.folder.special);
    if (leftRank != rightRank)
        return leftRank < rightRank;
    const int compared = left.folder.name.toCaseFolded().localeAwareCompare(right.folder.name.toCaseFolded());
    return compared != 0 ? compared < 0 : left.folder.id < right.folder.id;
}

bool isSame(const FolderModel::Place &left, const FolderModel::Place &right) {
    return left.store == right.store && left.folder == right.folder;
}

} // namespace

FolderModel::FolderModel(Mailboxes &mailboxes, QObject *parent)
    : QAbstractItemModel(parent), m_mailboxes(mailboxes), m_top(std::make_unique<Node>()) {
    m_top->isRead = true;
    connect(&mailboxes.changes(), &StoreChanges::changed, this, &FolderModel::refresh);
    refresh();
}

FolderModel::~FolderModel() = default;

FolderModel::Node *FolderModel::nodeOf(const QModelIndex &index) {
    return static_cast<Node *>(index.internalPointer());
}

QModelIndex FolderModel::indexOf(const Node &node) const {
    if (!node.parent)
        return {};
    const auto at = std::ranges::find(node.parent->children, &node, &std::unique_ptr<Node>::get);
    return createIndex(static_cast<int>(at - node.parent->children.begin()), 0, &node);
}

FolderModel::Place FolderModel::placeOf(const QModelIndex &index) const { return nodeOf(index)->place; }

QModelIndex FolderModel::indexOf(Store &store, FolderId folder) {
    QList<FolderId> path;
    const std::optional<Failure> failure = Attempt([&] {
        for (FolderId above = folder; above != 0; above = store.folder(above).parent)
            path.prepend(above);
    });
    if (failure)
        return {};
    Node *node = m_top.get();
    for (const FolderId each : std::as_const(path)) {
        fetchMore(indexOf(*node));
        const auto at = std::ranges::find_if(node->children, [&](const std::unique_ptr<Node> &child) {
            return isSame(child->place, {.store = &store, .folder = each});
        });
        if (at == node->children.end())
            return {};
        node = at->get();
    }
    return indexOf(*node);
}

QModelIndex FolderModel::index(int row, int column, const QModelIndex &parent) const {
    if (!hasIndex(row, column, parent))
        return {};
    const Node &node = parent.isValid() ? *nodeOf(parent) : *m_top;
    return createIndex(row, column, node.children[static_cast<std::size_t>(row)].get());
}

QModelIndex FolderModel::parent(const QModelIndex &child) const {
    return child.isValid() ? indexOf(*nodeOf(child)->parent) : QModelIndex();
}

int FolderModel::rowCount(const QModelIndex &parent) const {
    return static_cast<int>((parent.isValid() ? *nodeOf(parent) : *m_top).children.size());
}

int FolderModel::columnCount(const QModelIndex & /*parent*/) const { return 1; }

bool FolderModel::hasChildren(const QModelIndex &parent) const {
    const Node &node = parent.isValid() ? *nodeOf(parent) : *m_top;
    return node.isRead ? !node.children.empty() : node.shown.hasChildren;
}

bool FolderModel::canFetchMore(const QModelIndex &parent) const {
    return parent.isValid() && !nodeOf(parent)->isRead && nodeOf(parent)->shown.hasChildren;
}

void FolderModel::fetchMore(const QModelIndex &parent) {
    if (m_isChanging || !canFetchMore(parent))
        return;
    Node &node = *nodeOf(parent);
    Attempt([&] {
        const QList<CountedFolder> children = childrenOf(node);
        node.isRead = true;
        replace(node, QList<Place>(children.size(), {.store = node.place.store}), children);
    });
}

QVariant FolderModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const CountedFolder &shown = nodeOf(index)->shown;
    switch (role) {
    case Qt::DisplayRole:
        return shown.folder.name;
    case EntryIdRole:
        return shown.folder.entryId;
    case UnreadCountRole:
        return shown.counts.unread;
    case ItemCountRole:
        return shown.counts.items;
    case SpecialRole:
        return static_cast<int>(shown.folder.special);
    case ItemTypeRole:
        return shown.folder.defaultItemType;
    default:
        return {};
    }
}

QList<CountedFolder> FolderModel::childrenOf(const Node &node) {
    QList<CountedFolder> children = node.place.store->countedChildFolders(node.place.folder);
    std::ranges::sort(children, isBefore);
    return children;
}

void FolderModel::refresh() {
    if (m_isChanging)
        return;
    QList<Place> places;
    QList<CountedFolder> tops;
    std::map<const Store *, StoreRevision> standing;
    for (Store *store : m_mailboxes.stores()) {
        // A store that can't be read at the moment stays as it is shown, and is looked at again.
        const std::optional<Failure> failure = Attempt([&] {
            // Asked before the reads, so that a commit between them is noticed at the next look.
            const StoreRevision revision = store->revision();
            if (store == &m_mailboxes.mailbox())
                m_mailboxes.makeSpecialFolders();
            tops.append(store->countedFolder(store->root().id));
            standing[store] = revision;
        });
        if (failure) {
            const auto shown = std::ranges::find_if(
                m_top->children, [&](const std::unique_ptr<Node> &top) { return top->place.store == store; });
            if (shown == m_top->children.end())
                continue;
            tops.append((*shown)->shown);
        }
        places.append({.store = store});
    }
    replace(*m_top, places, tops);
    for (const std::unique_ptr<Node> &top : m_top->children) {
        const auto revision = standing.find(top->place.store);
        if (revision == standing.end() || m_seen[top->place.store] == revision->second)
            continue;
        if (!Attempt([&] { refreshBelow(*top); }))
            m_seen[top->place.store] = revision->second;
    }
}

void FolderModel::refreshBelow(Node &node) {
    if (!node.isRead)
        return;
    const QList<CountedFolder> children = childrenOf(node);
    replace(node, QList<Place>(children.size(), {.store = node.place.store}), children);
    for (const std::unique_ptr<Node> &child : node.children)
        refreshBelow(*child);
}

void FolderModel::replace(Node &parent, const QList<Place> &places, const QList<CountedFolder> &standing) {
    m_isChanging = true;
    const auto done = qScopeGuard([this] { m_isChanging = false; });
    const QModelIndex above = indexOf(parent);
    Nodes &shown = parent.children;
    const auto placeAt = [&](qsizetype at) {
        return Place{.store = places[at].store, .folder = standing[at].folder.id};
    };

    using Key = std::pair<const Store *, FolderId>;
    std::map<Key, const Node *> known;
    for (qsizetype at = 0; at < standing.size(); ++at)
        known.emplace(Key(places[at].store, standing[at].folder.id), nullptr);
    for (std::size_t row = shown.size(); row-- > 0;) {
        const auto stays = known.find(Key(shown[row]->place.store, shown[row]->place.folder));
        if (stays != known.end()) {
            stays->second = shown[row].get();
            continue;
        }
        beginRemoveRows(above, static_cast<int>(row), static_cast<int>(row));
        shown.erase(shown.begin() + static_cast<std::ptrdiff_t>(row));
        endRemoveRows();
    }

    for (qsizetype at = 0; at < standing.size(); ++at) {
        const Place place = placeAt(at);
        const auto here = shown.begin() + at;
        if (!known.at(Key(place.store, place.folder))) {
            // All that come next to each other come at once.
            qsizetype end = at + 1;
            while (end < standing.size() && !known.at(Key(placeAt(end).store, placeAt(end).folder)))
                ++end;
            Nodes fresh;
            for (qsizetype each = at; each < end; ++each)
                fresh.push_back(
                    std::make_unique<Node>(Node{.parent = &parent, .place = placeAt(each), .shown = standing[each]}));
            beginInsertRows(above, static_cast<int>(at), static_cast<int>(end) - 1);
            shown.insert(here, std::make_move_iterator(fresh.begin()), std::make_move_iterator(fresh.end()));
            endInsertRows();
            at = end - 1;
            continue;
        }
        const auto from = std::find_if(here, shown.end(),
                                       [&](const std::unique_ptr<Node> &node) { return isSame(node->place, place); });
        if (from != here) {
            const int row = static_cast<int>(from - shown.begin());
            beginMoveRows(above, row, row, above, static_cast<int>(at));
            std::rotate(here, from, from + 1);
            endMoveRows();
        }
        Node &node = *shown[static_cast<std::size_t>(at)];
        if (node.shown == standing[at])
            continue;
        node.shown = standing[at];
        // Without children left to read, what was unfolded is no longer; what gets its first is read when asked for.
        const QModelIndex changed = indexOf(node);
        Q_EMIT dataChanged(changed, changed);
    }
}

} // namespace desk
