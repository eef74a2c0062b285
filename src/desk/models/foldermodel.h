/// The folders of all stores as a tree.
#pragma once

#include "desk/store/store.h"

#include <QAbstractItemModel>

namespace desk {

class Mailboxes;

/// The stores' top folders and what is below them, the default folders first, the others by name. Subfolders are read
/// when they are asked for (`fetchMore`, as a tree does that is unfolded). What was written to the stores shows when
/// the mailboxes' `StoreChanges` tells of it: folders that come, go, move within their parent or change are told one by
/// one, so that what is unfolded and selected stays so.
class FolderModel : public QAbstractItemModel {
    Q_OBJECT

  public:
    enum Role {
        EntryIdRole = Qt::UserRole,
        UnreadCountRole,
        ItemCountRole,
        /// The number of a default folder, 0 for any other.
        SpecialRole,
        ItemTypeRole
    };

    explicit FolderModel(Mailboxes &mailboxes, QObject *parent = nullptr);
    ~FolderModel() override;

    /// A folder of the tree.
    struct Place {
        Store *store = nullptr;
        FolderId folder = 0;
    };
    /// REQUIRES: a valid index of this model.
    [[nodiscard]] Place placeOf(const QModelIndex &index) const;
    /// The row of a folder; what is above it is read for that. Invalid where there is no such folder.
    [[nodiscard]] QModelIndex indexOf(Store &store, FolderId folder);

    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex &child) const override;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex &parent = {}) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

  private:
    struct Node;
    using Nodes = std::vector<std::unique_ptr<Node>>;

    [[nodiscard]] static Node *nodeOf(const QModelIndex &index);
    [[nodiscard]] QModelIndex indexOf(const Node &node) const;
    void refresh();
    void refreshBelow(Node &node);
    /// Brings the children in line with what stands.
    void replace(Node &parent, const QList<Place> &places, const QList<CountedFolder> &standing);
    [[nodiscard]] QList<CountedFolder> childrenOf(const Node &node);

    Mailboxes &m_mailboxes;
    /// Above the top folders; stands for the invalid index.
    std::unique_ptr<Node> m_top;
    std::map<const Store *, StoreRevision> m_seen;
    bool m_isChanging = false;
};

} // namespace desk
