#include "desk/objects/mapifolder.h"

#include "desk/content/folderpath.h"
#include "desk/objects/explorer.h"
#include "desk/objects/explorers.h"
#include "desk/objects/folders.h"
#include "desk/objects/itemkinds.h"
#include "desk/objects/items.h"
#include "desk/objects/namespace.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"

namespace desk::objects {

MAPIFolder::MAPIFolder(std::weak_ptr<desk::Session> session, Store &store, FolderId id)
    : SessionObject(std::move(session)), m_store(&store), m_id(id) {}

FolderRecord MAPIFolder::record() const {
    const std::shared_ptr<desk::Session> open = session();
    return m_store->folder(m_id);
}

template <class T>
void MAPIFolder::write(T FolderRecord::*field, const T &value) {
    FolderRecord folder = record();
    if (folder.*field == value)
        return;
    folder.*field = value;
    m_store->saveFolder(folder);
}

void MAPIFolder::setName(const QString &name) { write(&FolderRecord::name, name); }
void MAPIFolder::setWebViewOn(bool on) { write(&FolderRecord::homePageOn, on); }
void MAPIFolder::setWebViewUrl(const QString &url) { write(&FolderRecord::homePageUrl, url); }

QString MAPIFolder::storeId() const {
    const std::shared_ptr<desk::Session> open = session();
    return m_store->storeId();
}

QString MAPIFolder::folderPath() const { return pathOf(*m_store, record()); }

Value MAPIFolder::parent() const {
    const FolderRecord folder = record();
    const std::shared_ptr<desk::Session> open = session();
    if (folder.parent == 0)
        return automation::wrap(open->nameSpace());
    return automation::wrap(open->folder(*m_store, folder.parent));
}

QString MAPIFolder::defaultMessageClass() const {
    return QString::fromLatin1(kindOfType(defaultItemType()).messageClass);
}

int MAPIFolder::unreadItemCount() const {
    const std::shared_ptr<desk::Session> open = session();
    return static_cast<int>(m_store->counts(m_id).unread);
}

Value MAPIFolder::Folders(const Value &Index) {
    const auto folders = std::make_shared<objects::Folders>(weakSession(), self<MAPIFolder>());
    return Index.isMissing() ? Value(automation::wrap(folders)) : folders->Item(Index);
}

Value MAPIFolder::Items(const Value &Index) {
    const auto items = std::make_shared<objects::Items>(weakSession(), self<MAPIFolder>());
    return Index.isMissing() ? Value(automation::wrap(items)) : items->Item(Index);
}

void MAPIFolder::Display() {
    const auto explorers = session()->windows().explorerCollection(weakSession());
    explorers->open(self<MAPIFolder>())->Display();
}

void MAPIFolder::Delete() {
    const std::shared_ptr<desk::Session> open = session();
    const FolderRecord folder = record();
    if (folder.special != SpecialFolder::None)
        throw Failure(failures::accessDenied, QStringLiteral("The folder %1 can't be deleted.").arg(folder.name));
    if (open->isMailbox(*m_store)) {
        const FolderRecord deleted = desk::Session::specialFolder(*m_store, SpecialFolder::DeletedItems);
        if (folder.parent != deleted.id) {
            m_store->moveFolder(m_id, deleted.id);
            return;
        }
    }
    m_store->removeFolder(m_id);
}

void MAPIFolder::MoveTo(const Value &DestinationFolder) {
    const auto destination = automation::exposedOf<MAPIFolder>(DestinationFolder);
    if (!destination)
        throw Failure(failures::objectNotSet);
    if (&destination->store() != m_store)
        throw Failure(failures::invalidCall, QStringLiteral("A folder can't be moved to another store."));
    m_store->moveFolder(m_id, destination->id());
}

} // namespace desk::objects
