#include "desk/objects/session.h"

#include "desk/content/forms.h"
#include "desk/objects/application.h"
#include "desk/objects/item.h"
#include "desk/objects/itemkinds.h"
#include "desk/objects/itemwatch.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/namespace.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/windowfactory.h"
#include "desk/transport/transport.h"

namespace desk {
Session::Session(const Profile &profile) : Mailboxes(profile) {}

Session::~Session() = default;

std::shared_ptr<Session> Session::open(const Profile &profile) {
    std::shared_ptr<Session> session(new Session(profile));
    session->m_windows = std::make_unique<Windows>();
    session->m_watch = std::make_unique<ItemWatch>(*session);
    session->m_transport = std::make_unique<Transport>(*session, [watch = session->m_watch.get()] { watch->look(); });
    session->m_forms = std::make_unique<Forms>(profile.formsFolder());
    session->m_application = std::make_shared<objects::Application>(session);
    session->m_nameSpace = std::make_shared<objects::NameSpace>(session);
    return session;
}

void Session::setWindowFactory(std::unique_ptr<WindowFactory> factory) { m_windowFactory = std::move(factory); }

std::shared_ptr<objects::Application> Session::application() { return m_application; }
std::shared_ptr<objects::NameSpace> Session::nameSpace() { return m_nameSpace; }

std::shared_ptr<objects::MAPIFolder> Session::folder(Store &store, FolderId id) {
    std::weak_ptr<objects::MAPIFolder> &place = m_folders[{&store, id}];
    std::shared_ptr<objects::MAPIFolder> folder = place.lock();
    if (!folder) {
        folder = std::make_shared<objects::MAPIFolder>(weak_from_this(), store, id);
        place = folder;
    }
    return folder;
}

std::shared_ptr<objects::Item> Session::item(Store &store, const ItemRecord &record) {
    return objects::makeItem(weak_from_this(), store, record);
}

std::shared_ptr<objects::Item> Session::newItem(Store &store, FolderId folder, const QString &messageClass) {
    ItemRecord record;
    record.folder = folder;
    record.messageClass = messageClass;
    std::shared_ptr<objects::Item> item = objects::makeItem(weak_from_this(), store, record);
    item->fillFrom(m_forms->fieldsOf(messageClass, store.folder(folder)));
    return item;
}

} // namespace desk
