#include "desk/objects/application.h"

#include "desk/content/itemmessage.h"
#include "desk/objects/explorer.h"
#include "desk/objects/explorers.h"
#include "desk/objects/inspector.h"
#include "desk/objects/inspectors.h"
#include "desk/objects/item.h"
#include "desk/objects/itemkinds.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/namespace.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"
#include "desk/transport/transport.h"

namespace desk::objects {

Value Application::GetNamespace(const QString &Type) {
    if (Type.compare(QStringLiteral("MAPI"), Qt::CaseInsensitive) != 0)
        throw Failure(failures::invalidCall, QStringLiteral("The only name space is \"MAPI\"."));
    return automation::wrap(session()->nameSpace());
}

Value Application::ActiveWindow() { return automation::wrap(session()->windows().front()); }
Value Application::ActiveExplorer() { return automation::wrap(session()->windows().frontExplorer()); }
Value Application::ActiveInspector() { return automation::wrap(session()->windows().frontInspector()); }

Value Application::Explorers(const Value &Index) {
    const std::shared_ptr<objects::Explorers> explorers = session()->windows().explorerCollection(weakSession());
    return Index.isMissing() ? Value(automation::wrap(explorers)) : explorers->Item(Index);
}

Value Application::Inspectors(const Value &Index) {
    const std::shared_ptr<objects::Inspectors> inspectors = session()->windows().inspectorCollection(weakSession());
    return Index.isMissing() ? Value(automation::wrap(inspectors)) : inspectors->Item(Index);
}

Value Application::CreateItem(int ItemType) {
    const std::shared_ptr<desk::Session> open = session();
    const ItemKind kind = kindOfType(ItemType);
    const FolderRecord folder = open->specialFolder(kind.home);
    return automation::wrap(open->newItem(open->mailbox(), folder.id, QString::fromLatin1(kind.messageClass)));
}

Value Application::CreateItemFromTemplate(const QString &TemplatePath, const Value &InFolder) {
    const std::shared_ptr<desk::Session> open = session();
    const auto folder = InFolder.isMissing() ? nullptr : automation::exposedOf<MAPIFolder>(InFolder);
    Store &store = folder ? folder->store() : open->mailbox();
    const FolderId place = folder ? folder->id() : open->specialFolder(SpecialFolder::Drafts).id;
    const IncomingItem opened = openedItem(readFile(TemplatePath));
    const std::shared_ptr<Item> item = open->newItem(store, place, opened.fields.messageClass);
    item->content().fill(opened.fields, opened.parts);
    return automation::wrap(item);
}

int Application::DeliverNow() { return session()->transport().deliverNow(); }

void Application::Quit() {
    const std::shared_ptr<desk::Session> open = session();
    if (open->quitAsked)
        open->quitAsked();
}

} // namespace desk::objects
