// Files that tests write and read at one go.
#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

inline QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

/// Makes the folders above it too. Gives the path.
inline QString writtenFile(const QString &path, const QByteArray &content) {
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size()) << path.toStdString();
    return path;
}
