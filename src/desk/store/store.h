/// The message store: folders and items in one SQLite file, which several processes use at once.
///
/// records.h has the records, entryid.h the identifiers, transfer.h the move between two stores. Every writing
/// operation is one durable transaction: when it returns, its effect outlives a crash; when it fails or the process
/// dies, nothing of it has happened.
///
/// Failures of every operation: `noDiskSpace` when the disk is full or refuses to write, `accessDenied` when the file
/// or its folder is read-only, `unspecified` when another program holds the store for longer than the wait or the file
/// is damaged. The sentence names the file and says what to do.
///
/// A Store belongs to the thread that opened it, and must not be used in a forked child.
#pragma once

#include "desk/store/entryid.h"
#include "desk/store/records.h"
#include "platform/storage/access.h"

#include <chrono>
#include <string_view>

namespace desk {

class Connection;
class Correspondents;
class FolderOrder;
class Transaction;
struct Bind;

struct StoreOptions {
    /// The name of the root folder of a store that is made anew.
    QString rootName = QStringLiteral("Store");
    /// Whether a file that does not exist is made. Otherwise that is `notFound`.
    bool create = true;
    /// Who may use a file that is made.
    storage::Sharing sharing = storage::Sharing::Owner;
    /// How long a write waits for another program's.
    std::chrono::milliseconds wait{10000};
};

/// Two of them differ where anything was committed between them. Good for comparing within one `Store` only.
struct StoreRevision {
    qint64 byOthers = -1;
    qint64 byThis = -1;

    friend bool operator==(const StoreRevision &, const StoreRevision &) = default;
};

/// See `Store::moment`.
class StoreMoment {
  public:
    explicit StoreMoment(Connection &connection);
    ~StoreMoment();
    StoreMoment(const StoreMoment &) = delete;
    StoreMoment &operator=(const StoreMoment &) = delete;

  private:
    std::unique_ptr<Transaction> m_reading;
};

class Store {
  public:
    /// Fails with `unspecified` for a file that is damaged (an empty one is), no store, or written by a newer version,
    /// and for a missing one whose log is still there.
    explicit Store(const QString &path, const StoreOptions &options = {});
    ~Store();
    Store(const Store &) = delete;
    Store &operator=(const Store &) = delete;

    [[nodiscard]] const QString &path() const;
    /// 40 hexadecimal characters, the same for as long as the file lives.
    [[nodiscard]] QString storeId() const;
    /// The bytes that its entry identifiers carry.
    [[nodiscard]] const QByteArray &tag() const { return m_tag; }

    // --- Folders. An unknown folder is `notFound`. A name is taken once in a folder, compared exactly; a second is
    // `keyExists`.

    [[nodiscard]] FolderRecord root();
    [[nodiscard]] FolderRecord folder(FolderId id);
    [[nodiscard]] std::optional<FolderRecord> folderByEntryId(const QString &entryId);
    /// The folder of a default number.
    [[nodiscard]] std::optional<FolderRecord> specialFolder(SpecialFolder special);
    /// The folders whose items are contacts, wherever they stand, in the order they were made. However many other
    /// folders there are, they cost nothing here.
    [[nodiscard]] QList<FolderRecord> contactsFolders();
    /// In the order they were made.
    [[nodiscard]] QList<FolderRecord> childFolders(FolderId parent);
    /// The same with what a tree of folders shows of each.
    [[nodiscard]] QList<CountedFolder> countedChildFolders(FolderId parent);
    [[nodiscard]] CountedFolder countedFolder(FolderId id);
    /// The child folders without those whose names begin with a lower number, or with none where the number is above 0.
    [[nodiscard]] QList<FolderRecord> childFoldersThatMayReach(FolderId parent, double least);
    [[nodiscard]] std::optional<FolderRecord> findFolder(FolderId parent, const QString &name);
    /// Makes a folder from the record's parent and fields. Gives what was stored.
    FolderRecord addFolder(const FolderRecord &record);
    /// Writes name, default item type, home page and special number. The last writer wins.
    FolderRecord saveFolder(const FolderRecord &record);
    /// Puts a folder with all that is in it under another parent; where its name is taken there, "Name (2)" and so on.
    /// Fails with `invalidCall` for the root and for a parent inside the folder itself.
    FolderRecord moveFolder(FolderId id, FolderId parent);
    /// Removes a folder for ever, with its subfolders and items. Fails with `invalidCall` for the root.
    void removeFolder(FolderId id);

    // --- The items of a folder, in order of arrival.

    [[nodiscard]] qint64 count(FolderId folder) { return counts(folder).items; }
    /// One row, however many items there are: the file keeps the counts, whoever writes to it.
    [[nodiscard]] FolderCounts counts(FolderId folder);
    /// The item at a position from 1 to `count`, in constant time; nothing beyond.
    [[nodiscard]] std::optional<ItemRecord> nth(FolderId folder, qint64 position);
    /// Up to `limit` items that arrived after that arrival number: a page of a list, and what is new since a look.
    [[nodiscard]] QList<ItemRecord> itemsArrivedAfter(FolderId folder, qint64 arrival, int limit = 1000);
    /// The newest arrival number given out in the store, whatever the folder.
    [[nodiscard]] qint64 lastArrival();
    /// The first item, by arrival, that meets all conditions and arrived after `arrival`. Conditions on indexed fields
    /// and on custom properties with a value are look-ups.
    [[nodiscard]] std::optional<ItemRecord> find(FolderId folder, const QList<Condition> &conditions,
                                                 qint64 arrival = 0);
    /// What was last committed to the file, as far as this connection sees. Costs microseconds.
    [[nodiscard]] StoreRevision revision();
    /// Holds what is read until it goes at one moment between commits.
    /// REQUIRES: nothing is written meanwhile, and nothing is asked by position.
    [[nodiscard]] StoreMoment moment();

    // --- One item.

    [[nodiscard]] std::optional<ItemRecord> item(ItemId id);
    [[nodiscard]] std::optional<ItemRecord> itemByEntryId(const QString &entryId);
    [[nodiscard]] Bodies bodies(ItemId id);
    [[nodiscard]] QByteArray original(ItemId id);
    /// In the order they were first added.
    [[nodiscard]] QList<Property> properties(ItemId id);
    /// Without their data.
    [[nodiscard]] QList<AttachmentRecord> attachments(ItemId id);
    [[nodiscard]] QByteArray attachmentData(qint64 attachmentId);

    /// Makes a new item in a folder. Gives what was stored.
    ItemRecord insert(FolderId folder, const ItemRecord &fields, const ItemParts &parts = {});
    /// Writes the fields and the given parts of an item that stands in `fields.folder` at `fields.version`, and gives
    /// the record with its new version. Fails with `itemChanged` when somebody else saved it first, `itemGone` when it
    /// was deleted or moved away.
    ItemRecord save(const ItemRecord &fields, const ItemParts &parts = {});
    /// A new item in the same folder with everything the saved item has. Fails with `itemGone`.
    ItemRecord copy(ItemId id);
    /// Moves an item to another folder of this store; it keeps its entry identifier and gets a new arrival number. Of
    /// several who move it at once one wins: fails with `itemGone` when it no longer stands in `item.folder`. What
    /// somebody else saved meanwhile moves along.
    ItemRecord move(const ItemRecord &item, FolderId folder);
    /// Deletes an item for ever. Fails with `itemGone`, as for `move`.
    void remove(const ItemRecord &item);

  private:
    friend class Correspondents;
    friend class ItemList;
    friend class Transfer;

    [[nodiscard]] qint64 numberFor(const QString &entryId, EntryId::Kind kind) const;
    /// Fails with `itemGone`.
    ItemRecord standingItem(ItemId id);
    std::optional<FolderRecord> folderBy(std::string_view sql, std::initializer_list<Bind> binds);
    QList<CountedFolder> countedFolders(const std::string &condition, FolderId id);
    QList<FolderRecord> foldersBy(std::string_view sql, std::initializer_list<Bind> binds);

    std::unique_ptr<Connection> m_connection;
    std::unique_ptr<FolderOrder> m_order;
    QByteArray m_tag;
    /// False for a file of an older version that can't be written: its items are counted each time.
    bool m_keepsCounts = false;
};

} // namespace desk
