#include "desk/windows/folderpicker.h"

#include "desk/objects/explorer.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"
#include "platform/window/window.h"

namespace desk {
namespace {

const QString treeName = QStringLiteral("treFolders");
const QString okName = QStringLiteral("cmdOK");

/// The rows of the dialog, and the folder that each key stands for.
class FolderTree {
  public:
    explicit FolderTree(Session &session) {
        session.makeSpecialFolders();
        for (Store *store : session.stores())
            add(*store, store->root(), QStringLiteral("\\\\"), 0);
    }

    [[nodiscard]] const QList<window::TreeRow> &rows() const { return m_rows; }
    [[nodiscard]] FolderPlace at(const QString &key) const { return m_places.value(key); }
    [[nodiscard]] QString keyOf(const QString &entryId) const { return m_keys.value(entryId); }

  private:
    /// Keys are paths, which people can read. A name with a backslash can make two of them the same.
    void add(Store &store, const FolderRecord &folder, const QString &above, int depth) {
        const QString path = above + folder.name;
        const QString key = m_places.contains(path) ? folder.entryId : path;
        m_places.insert(key, {&store, folder});
        m_keys.insert(folder.entryId, key);
        m_rows.append({depth, key, folder.name});
        QList<FolderRecord> children = store.childFolders(folder.id);
        std::stable_sort(children.begin(), children.end(), [](const FolderRecord &left, const FolderRecord &right) {
            return left.name.localeAwareCompare(right.name) < 0;
        });
        for (const FolderRecord &child : std::as_const(children))
            add(store, child, path + u'\\', depth + 1);
    }

    QList<window::TreeRow> m_rows;
    QHash<QString, FolderPlace> m_places;
    QHash<QString, QString> m_keys;
};

QString presentFolder(Session &session) {
    if (const auto explorer = session.windows().frontExplorer()) {
        if (const auto shown = Attempt([&] { static_cast<void>(explorer->folder()->record()); }); !shown)
            return explorer->folder()->entryId();
    }
    return session.specialFolder(SpecialFolder::Inbox).entryId;
}

} // namespace

std::optional<FolderPlace> pickFolder(Session &session) {
    const FolderTree tree(session);
    window::Field field{window::Field::Kind::Tree,
                        treeName,
                        QStringLiteral("Folders"),
                        tree.keyOf(presentFolder(session)),
                        {},
                        {},
                        tree.rows()};
    window::Sheet sheet;
    sheet.name = QStringLiteral("frmPickFolder");
    sheet.title = QStringLiteral("Select Folder");
    sheet.text = QStringLiteral("Choose a folder:");
    sheet.fields = {field};
    sheet.buttons = {{okName, QStringLiteral("OK")}, {QStringLiteral("cmdCancel"), QStringLiteral("Cancel")}};
    std::shared_ptr<OpenDialog> dialog;
    sheet.opened = [&](const std::function<void()> &close) {
        dialog = std::make_shared<OpenDialog>(OpenDialog{automation::currentClient(), close});
        session.windows().add(dialog);
    };
    automation::serveInNestedLoop();
    if (window::showSheet(sheet) != okName)
        return std::nullopt;
    FolderPlace picked = tree.at(sheet.value(treeName));
    if (!picked.store)
        throw Failure(failures::notFound);
    picked.folder = picked.store->folder(picked.folder.id);
    return picked;
}

} // namespace desk
