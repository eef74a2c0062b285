#include "orvelle/toolbar/rootexplorer.h"

#include "orvelle/core/entry.h"
#include "orvelle/core/process.h"
#include "orvelle/core/starting.h"
#include "orvelle/mail/sentmail.h"
#include "orvelle/session/session.h"
#include "orvelle/ticket/ticket.h"

ProcessLocal<Ref<cRootExplorer>> objRootExplorer;

void subMakeRootExplorer() {
    objRootExplorer = Ref<cRootExplorer>::make();
    fncSentFolder = [] { return objRootExplorer->fncSentFolder(); };
}

cRootExplorer::~cRootExplorer() {
    const WholeStep whole;
    Class_Terminate();
}

std::function<void(const ValueList &)> cRootExplorer::Own(void (cRootExplorer::*subEvent)()) {
    return [self = weak_from_this(), subEvent](const ValueList &) {
        if (const auto root = self.lock())
            (*root.*subEvent)();
    };
}

void cRootExplorer::Attach(const host::Application &oua, const host::Explorer &oue) {
    ouaMonitorApp = oua;
    m_hostEvents.push_back(oua.connect("Quit", EntryOfEnd(Own(&cRootExplorer::ouaMonitorApp_Quit))));
    oueCurrExplorer = oue;
    m_hostEvents.push_back(oue.connect("Close", EntryOfEnd(Own(&cRootExplorer::oueCurrExplorer_Close))));
    m_hostEvents.push_back(oue.connect("FolderSwitch", EntryOfEnd(Own(&cRootExplorer::oueCurrExplorer_FolderSwitch))));
}

void cRootExplorer::cmdCopy_Click() {
    // A row without its item would be a ticket that nobody sees.
    const WholeStep whole;
    Attempt([] {
        const host::Selection selection = ouaOutlook->ActiveExplorer().Selection();
        if (selection.Count() != 1)
            return;
        const host::Item oui = selection.Item(1);
        if (oui.isNothing() || oui.typeName() != "PostItem")
            return;
        cTicket objTicket;
        if (!objTicket.ReadFromOutlook(oui))
            return;
        objTicket.TicketID.clear();
        objTicket.SaveToDB();
        host::Item ouiNew;
        objTicket.SaveToOutlook(false, true, ouiNew);
    });
}

void cRootExplorer::cmdSettings_Click() {
    subExecute("ORVELLESETTINGS", "", "");
    Class_Terminate();
    subQuit();
}

void cRootExplorer::oisORVLSentItems_ItemAdd(const host::Item &Item) { subFileSentItem(Item); }

void cRootExplorer::subFileSentMail() {
    if (oisORVLSentItems.isNothing())
        return;
    Attempt([&] {
        // The host tells of sent mail behind all the mail that has come in. Only the newest are looked at: what names
        // no ticket stays in the folder for ever.
        constexpr qint32 mostLookedAt = 1000;
        const qint32 intCount = oisORVLSentItems.Count();
        for (qint32 i = intCount; i >= 1 && i > intCount - mostLookedAt; --i)
            oisORVLSentItems_ItemAdd(oisORVLSentItems.Item(i));
    });
}

void cRootExplorer::ouaMonitorApp_Quit() {
    subRemoveButtons();
    subReleaseAll();
}

void cRootExplorer::oueCurrExplorer_Close() {
    subRemoveButtons();
    subReleaseAll();
}

void cRootExplorer::oueCurrExplorer_FolderSwitch() {
    subRemoveButtons();
    subReleaseAll();
}

void cRootExplorer::subSetupSentORVL() {
    const host::MAPIFolder oufSent = onsMAPI->GetDefaultFolder(host::defaultfolder::sentItems);
    const QString strName = "ORVLSentItems";
    const auto find = [&] { oufORVLSentItems = oufSent.Folders().Item(strName); };
    // Another copy may make it in between; then the adding fails, and it is there.
    if (Attempt(find) && Attempt([&] { oufORVLSentItems = oufSent.Folders().Add(strName, 6); }))
        Attempt(find);
    if (oufORVLSentItems.isNothing())
        return;
    oisORVLSentItems = oufORVLSentItems.Items();
    m_sentItemAdd =
        oisORVLSentItems.connect("ItemAdd", EntryBehind([self = weak_from_this()](const ValueList &arguments) {
                                     if (const auto root = self.lock())
                                         root->oisORVLSentItems_ItemAdd(host::Item(arguments.value(0)));
                                 }));
}

host::MAPIFolder cRootExplorer::fncSentFolder() {
    if (oufORVLSentItems.isNothing())
        subSetupSentORVL();
    return oufORVLSentItems;
}

void cRootExplorer::Class_Terminate() {
    for (const host::CommandBarButton &button : {cmdSettings, cmdCopy}) {
        if (button)
            Attempt([&] { button.Delete(); });
    }
    if (cbrToolbar)
        Attempt([&] { cbrToolbar.Delete(); });
    m_buttonEvents.clear();
    m_hostEvents.clear();
    m_sentItemAdd.reset();
    oueCurrExplorer = {};
    ouaMonitorApp = {};
    oisORVLSentItems = {};
    oufORVLSentItems = {};
    cmdSettings = {};
    cmdCopy = {};
    cbrToolbar = {};
}
