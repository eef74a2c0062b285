#include "orvelle/session/folderpath.h"

#include "orvelle/core/components.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/session/session.h"
#include "platform/scripting/shell.h"
#include "platform/value/convert.h"

#include <QStringList>

namespace {
constexpr QChar separator = u'\\';

QStringList fncTopNames(const host::NameSpace &ons) {
    QString strNames;
    Attempt([&] {
        const host::Folders oufs = ons.Folders();
        const qint32 count = oufs.Count();
        for (qint32 i = 1; i <= count; ++i)
            strNames += oufs.Item(i).Name() + ";";
    });
    return strNames.split(QChar(u';'));
}
} // namespace

QString fncGetFolderPath(const host::MAPIFolder &ouf, const host::NameSpace &ons) {
    subTrace("Looping folder tree in order to get the full folder path");
    QString strPath;
    Attempt([&] {
        strPath = ouf.Name();
        const QStringList topNames = fncTopNames(ons);
        host::MAPIFolder current = ouf;
        for (;;) {
            // The session above the top folders has no name, so a tree without a known top ends the walk by a failure.
            current = current.Parent();
            const QString strName = current.Name();
            if (topNames.contains(strName)) {
                strPath = QString(separator) + separator + strName + separator + strPath;
                return;
            }
            strPath = strName + separator + strPath;
        }
    });
    return strPath;
}

host::MAPIFolder fncGetFolderFromPath(const QString &strPath) {
    if (strPath.trimmed().isEmpty())
        return {};
    const QStringList parts = strPath.split(separator);
    return AttemptOr(
        [&]() -> host::MAPIFolder {
            if (parts.size() == 1)
                return onsMAPI->GetSharedDefaultFolder(onsMAPI->CreateRecipient(strPath), host::defaultfolder::inbox);
            if (parts.size() == 2)
                return {};
            host::MAPIFolder ouf = onsMAPI->Folders(parts[2]);
            for (const QString &strPart : parts.mid(3))
                ouf = ouf.Folders(strPart);
            return ouf;
        },
        host::MAPIFolder());
}

host::MAPIFolder fncPickFolder(controls::Form *frmFormToReactiveate) {
    subStartOutlook(host::defaultfolder::inbox);
    Attempt([] { ouaOutlook->ActiveExplorer().Activate(); });
    Attempt([] { fncGetShell()->AppActivate(toText(ouaOutlook->ActiveWindow().get("Caption"))); });
    host::MAPIFolder ouf;
    Attempt([&] { ouf = onsMAPI->PickFolder(); });
    if (frmFormToReactiveate) {
        Attempt([&] { fncGetShell()->AppActivate(frmFormToReactiveate->Caption()); });
        Attempt([&] { frmFormToReactiveate->SetFocus(); });
    }
    return ouf;
}
