/// A folder of the host as texts that can be kept: what every layer may hold, and the session alone can follow.
#pragma once

#include <QString>

struct cFolderReference {
    QString Path;
    QString EntryID;
    QString StoreID;
    QString Name;
};
