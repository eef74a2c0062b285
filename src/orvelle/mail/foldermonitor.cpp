#include "orvelle/mail/foldermonitor.h"

#include "orvelle/core/components.h"
#include "orvelle/core/entry.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/dialogs.h"
#include "orvelle/mail/claim.h"
#include "orvelle/mail/intake.h"
#include "orvelle/mail/leftover.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/folderpath.h"
#include "orvelle/session/safeutils.h"
#include "platform/scripting/dictionary.h"

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
    // A flag item that no monitor knows would keep the folder from everybody.
    const WholeStep whole;
    auto monitor = Ref<cIncomingMonitor>::make();
    monitor->Watch(ouf.Items());
    if (monitor->ouiItems.Count() != 0)
        return {};
    monitor->AddFlagItem();
    return monitor;
}

/// Renamed, gone, or of a mailbox that is not in the profile.
QString fncNotFound(const QStringList &paths) {
    if (paths.isEmpty())
        return {};
    QString strText = "No mail is taken from these folders of the settings, for they are not found in this profile:";
    strText += strLineEnd;
    for (const QString &strPath : paths)
        strText += "- " + strPath + strLineEnd;
    return strText +
           "Correct their names in the setting EmailFolders, or make the folders and have their mailboxes added "
           "to the profile. Then start this program again." +
           strLineEnd;
}

/// Where nobody watches, nobody would know why mails stay there. A program that died may have left something in the
/// way.
/// \param missing  the folders that are not there.
/// \param folders  the folders that could not be taken.
void subTellNotTaken(const QStringList &missing, const QList<std::pair<QString, host::MAPIFolder>> &folders) {
    const QString strWhy = fncNotFound(missing) + (folders.isEmpty() ? QString() : fncWhyNotWatched(folders));
    if (strWhy.isEmpty())
        return;
    subTrace(strWhy);
    subAssistantMessage(ouaOutlook, strWhy);
}
} // namespace

cIncomingMonitor::~cIncomingMonitor() {
    const WholeStep whole;
    m_itemAdd.reset();
    if (ouiFlagItem)
        Attempt([&] { ouiFlagItem.Delete(); });
}

void cIncomingMonitor::Watch(const host::Items &ois) {
    ouiItems = ois;
    m_ouf = ois.Parent();
    m_itemAdd = ois.connect("ItemAdd", EntryBetween([self = weak_from_this()](const ValueList &arguments) {
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
    subHint(oui, strClaimProperty, cClaim::Own().ToString());
    oui.Post();
    ouiFlagItem = oui;
}

void subMonitorMailFolders() try {
    colIncomingMonitors = fncCreateDic<Ref<cIncomingMonitor>>();
    QStringList missing;
    QList<std::pair<QString, host::MAPIFolder>> notTaken;
    for (const QString &strPath : objSettings->EmailFolders->DicList->Items()) {
        subTrace("Iterating through the monitored email folder - " + strPath);
        const host::MAPIFolder ouf = fncGetFolderFromPath(strPath);
        if (ouf.isNothing()) {
            // A new helpdesk has a blank entry and no folder yet.
            if (!strPath.trimmed().isEmpty())
                missing.append(strPath);
            continue;
        }
        subScan(ouf);
        if (const auto monitor = fncTakeFolder(ouf))
            colIncomingMonitors->Add(strPath, monitor);
        else
            notTaken.append({strPath, ouf});
    }
    subCleanupSafeUtils();
    subTellNotTaken(missing, notTaken);
} catch (const Failure &failure) {
    subErrorHandler(failure, "subMonitorMailFolders");
}
