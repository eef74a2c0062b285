/// `cOutlookFolder`: a saved reference to a folder of the host.
#pragma once

#include "orvelle/core/folderreference.h"
#include "orvelle/host/folders.h"
#include "platform/controls/form.h"

#include <QString>

/// The identifiers find the folder; the path does where they don't. The name is a check on both, so that a folder that
/// was renamed is no longer found.
class cOutlookFolder : public cFolderReference {
  public:
    cOutlookFolder() = default;
    explicit cOutlookFolder(const cFolderReference &saved) : cFolderReference(saved) {}

    /// Lets the person pick a folder and refers to it, unless its kind is another than `intFolderType`.
    void GetOutlookPathInfo(controls::Form *frmFormToReactiveate, qint32 intFolderType);
    /// The folder, or Nothing.
    [[nodiscard]] host::MAPIFolder GetFolder() const;
    /// Writes the reference to four properties of an item, their names beginning with `strExtraName`.
    void SaveToOutlookProps(const host::Item &ouiItem, const QString &strExtraName) const;
    void GetFromOutlookProps(const host::Item &ouiItem, const QString &strExtraName);
};
