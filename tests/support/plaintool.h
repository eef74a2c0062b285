// What a plain tool does with a SQLite file, with nothing of this system around.
#pragma once

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QUuid>

/// Runs statements one after the other. Gives the rows of the last one, their values as texts.
inline QList<QStringList> plainTool(const QString &file, const QStringList &statements) {
    const QString name = QUuid::createUuid().toString();
    QList<QStringList> rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", name);
        database.setDatabaseName(file);
        EXPECT_TRUE(database.open());
        for (const QString &statement : statements) {
            rows.clear();
            QSqlQuery query(database);
            EXPECT_TRUE(query.exec(statement)) << qPrintable(statement + ": " + query.lastError().text());
            while (query.next()) {
                QStringList &row = rows.emplace_back();
                for (int at = 0; at < query.record().count(); ++at)
                    row += query.value(at).toString();
            }
        }
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}
