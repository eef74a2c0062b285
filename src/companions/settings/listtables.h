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

/// What an import did to one section, by the names of the rows.
struct Change {
    QString section;
    QStringList added;
    QStringList changed;
    QStringList removed;
};

/// Fails, with the line, for a row without a name and one that comes twice.
void checkNames(const Section &section);

/// The same, and for a value that is none of its column's kind, or does not fit it.
void checkList(const ListTable &table, const Section &section);

/// Brings the whole table, open for writing, in line with the section: adds what is new, writes what changed, deletes
/// what is gone. Names are compared without regard to case, and a row keeps its number. Of rows that another tool gave
/// the same name, the first by the alphabet counts, as for the system, and the others stay.
/// REQUIRES: `checkList` took the section, and the rows come in the alphabetical order of their names.
Change writeList(const ListTable &table, const Section &section, const Ref<ado::Recordset> &set);

} // namespace settings
