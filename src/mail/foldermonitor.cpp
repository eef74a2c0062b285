#include "mail/foldermonitor.h"

#include "core/entry.h"
#include "core/errorhandler.h"
#include "core/process.h"
#include "core/runtime.h"
#include "mail/intake.h"
#include "outlook/folderpath.h"
#include "outlook/safeutils.h"
#include "reference/settings.h"

ProcessLocal<Ref<scripting::Dictionary<Ref<cIncomingMonitor>>>> colIncomingMonitors;

namespace {
void subScan(const host::MAPIFolder &ouf) {
    const host::Items ois = ouf.Items();
    for (qint32 i = ois.Count(); i >= 1; --i) {
        Attempt([&] {
            const host::Item oui = ois.Item(i);
            if (fncIsNewMailItem(oui))
                subHandleScannedItem(oui, ouf);
        });
    }
}

/// The listening begins before the last look at the count, so that no message can come in unnoticed between the two.
Ref<cIncomingMonitor> fncTakeFolder(const host::MAPIFolder &ouf) {
    auto monitor = Ref<cIncomingMonitor>::make();
    monitor->Watch(ouf.Items());
    if (monitor->ouiItems.Count() != 0)
        return {};
    monitor->AddFlagItem();
    return monitor;
}
} // namespace

cIncomingMonitor::~cIncomingMonitor() {
    m_itemAdd.reset();
    if (ouiFlagItem)
        Attempt([&] { ouiFlagItem.Delete(); });
}

void cIncomingMonitor::Watch(const host::Items &ois) {
    ouiItems = ois;
    m_ouf = ois.Parent();
    m_itemAdd = ois.connect("ItemAdd", Entry([self = weak_from_this()](ValueList &arguments) {
                                // The end of the process, which a report can bring, drops the monitor under its own
                                // feet.
                                if (const auto monitor = self.lock())
                                    monitor->ouiItems_ItemAdd(host::Item(arguments.value(0)));
                            }));
}

void cIncomingMonitor::ouiItems_ItemAdd(const host::Item &Item) try {
    subHandleNewItem(Item, m_ouf);
} catch (const Failure &failure) {
    subErrorHandler(failure, "ouiItems.ItemAdd");
}

void cIncomingMonitor::AddFlagItem() {
    const host::PostItem oui(ouiItems.Add("IPM.Post").object());
    oui.Subject(strFlagSubject);
    oui.Body(strCurrentUserName);
    oui.Post();
    ouiFlagItem = oui;
}

void subMonitorMailFolders() try {
    colIncomingMonitors = fncCreateDic<Ref<cIncomingMonitor>>();
    for (const QString &strPath : objSettings->EmailFolders->DicList->Items()) {
        subTrace("Iterating through the monitored email folder - " + strPath);
        const host::MAPIFolder ouf = fncGetFolderFromPath(strPath);
        if (ouf.isNothing())
            continue;
        subScan(ouf);
        if (const auto monitor = fncTakeFolder(ouf))
            colIncomingMonitors->Add(strPath, monitor);
    }
    subCleanupSafeUtils();
} catch (const Failure &failure) {
    subErrorHandler(failure, "subMonitorMailFolders");
}
