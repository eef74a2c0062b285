#include "orvelle/session/outlookfolder.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/process.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/session/folderpath.h"
#include "orvelle/session/properties.h"

namespace {
QString fncNameOf(const host::MAPIFolder &ouf) {
    return AttemptOr([&] { return ouf.Name(); }, QString());
}
} // namespace

void cOutlookFolder::GetOutlookPathInfo(controls::Form *frmFormToReactiveate, qint32 intFolderType) try {
    const host::MAPIFolder ouf = fncPickFolder(frmFormToReactiveate);
    const host::MAPIFolder seen = host::snapshot(ouf, {"DefaultItemType", "EntryID", "StoreID", "Name"});
    if (seen.isNothing() || seen.DefaultItemType() != intFolderType)
        return;
    Path = fncGetFolderPath(ouf, onsMAPI);
    EntryID = seen.EntryID();
    StoreID = seen.StoreID();
    Name = seen.Name();
} catch (const Failure &failure) {
    subErrorHandler(failure, "cOutlookFolder.GetOutlookPathInfo");
}

host::MAPIFolder cOutlookFolder::GetFolder() const try {
    host::MAPIFolder ouf;
    if (!EntryID.isEmpty())
        Attempt([&] { ouf = onsMAPI->GetFolderFromID(EntryID, StoreID); });
    if (ouf.isNothing() && !Path.isEmpty())
        ouf = fncGetFolderFromPath(Path);
    if (Name.isEmpty())
        return ouf;
    if (ouf && fncNameOf(ouf) != Name)
        ouf = fncGetFolderFromPath(Path);
    return fncNameOf(ouf) == Name ? ouf : host::MAPIFolder();
} catch (const Failure &failure) {
    subErrorHandler(failure, "cOutlookFolder.GetFolder");
}

void cOutlookFolder::SaveToOutlookProps(const host::Item &ouiItem, const QString &strExtraName) const try {
    subSetOutlookValue(ouiItem, strExtraName + "OutlookFolderName", Name, valuetype::text);
    subSetOutlookValue(ouiItem, strExtraName + "OutlookFolderEntryID", EntryID, valuetype::text);
    subSetOutlookValue(ouiItem, strExtraName + "OutlookFolderStoreID", StoreID, valuetype::text);
    subSetOutlookValue(ouiItem, strExtraName + "OutlookFolderPath", Path, valuetype::text);
} catch (const Failure &failure) {
    subErrorHandler(failure, "cOutlookFolder.SaveToOutlookProps");
}

void cOutlookFolder::GetFromOutlookProps(const host::Item &ouiItem, const QString &strExtraName) try {
    QStringList names;
    for (const char *strName :
         {"OutlookFolderName", "OutlookFolderEntryID", "OutlookFolderStoreID", "OutlookFolderPath"})
        names << strExtraName + strName;
    const host::Item seen = host::snapshot(ouiItem, host::Questions({}).properties(names));
    const auto read = [&](const QString &strName) {
        return toText(fncGetOutlookValue(seen, strExtraName + strName, valuetype::text, ""));
    };
    Name = read("OutlookFolderName");
    EntryID = read("OutlookFolderEntryID");
    StoreID = read("OutlookFolderStoreID");
    Path = read("OutlookFolderPath");
} catch (const Failure &failure) {
    subErrorHandler(failure, "cOutlookFolder.GetFromOutlookProps");
}
