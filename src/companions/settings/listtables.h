/// The lists of an installation, table by table, as rows of texts.
#pragma once

#include "companions/settings/settingsfile.h"
#include "platform/ado/recordset.h"

namespace settings {

/// One list: its section in a file, its table, and the columns in the order of the file's fields. The first names the
/// row.
struct ListTable {
    QString section;
    QString heading;
    QString table;
    QStringList columns;

    /// The rows in alphabetical order.
    [[nodiscard]] QString source() const;
};

const QList<ListTable> &listTables();
/// nullptr for a section that is none of them.
const ListTable *findListTable(const QString &section);

/// Money and numbers are written with a point, whatever the region.
Section readList(const ListTable &table, const Ref<ado::Recordset> &set);

/// Brings the whole table, open for writing, in line with the section: adds what is new, writes what changed, deletes
/// what is gone. Names are compared without regard to case, and a row keeps its number. Fails for a row without a name
/// or one that comes twice.
void writeList(const ListTable &table, const Section &section, const Ref<ado::Recordset> &set);

} // namespace settings
