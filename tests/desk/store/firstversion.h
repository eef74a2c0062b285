/// Store files as version 1 of the format had them.
#pragma once

#include "desk/store/connection.h"

namespace desk {

/// Takes out of a closed store what came after version 1.
inline void makeFirstVersion(const QString &path) {
    Connection file(path, std::chrono::milliseconds(1000));
    Transaction transaction(file);
    for (const char *sql :
         {"DROP TRIGGER count_insert", "DROP TRIGGER count_delete", "DROP TRIGGER count_update",
          "ALTER TABLE folders DROP COLUMN item_count", "ALTER TABLE folders DROP COLUMN unread_count",
          "DROP INDEX items_by_received_at", "DROP INDEX items_by_subject", "DROP INDEX items_by_sender_name",
          "CREATE INDEX items_by_subject ON items (folder, subject_key, arrival) WHERE subject_key <> ''",
          "CREATE INDEX items_by_sender_name ON items (folder, sender_name_key, arrival) WHERE sender_name_key <> ''",
          "PRAGMA user_version = 1"})
        file.once(sql);
    transaction.commit();
}

/// How the engine goes about a statement, one step a line.
inline QString planOf(const QString &path, const std::string &sql) {
    Connection file(path, std::chrono::milliseconds(1000));
    QStringList steps;
    file.each("EXPLAIN QUERY PLAN " + sql, {}, [&steps](const Row &row) { steps << row.text(3); });
    return steps.join(u'\n');
}

inline qint64 versionOf(const QString &path) {
    return Connection(path, std::chrono::milliseconds(1000)).once("PRAGMA user_version").toLongLong();
}

} // namespace desk
