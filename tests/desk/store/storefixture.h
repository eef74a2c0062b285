/// A store in a directory of its own, and ways to look at what stands in it.
#pragma once

#include "desk/store/store.h"
#include "support/files.h"
#include "support/steps.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>

namespace desk {

/// The texts that break naive storage: quotes of SQL, surrogates without their other half, marks and nulls.
inline QStringList oddTexts() {
    return {QString(),
            "'; DROP TABLE items; --",
            "O'Neill \"quoted\" \\ % _ ? :id",
            "Grüße, 中文, עברית, 😀",
            QString(QChar(0xD83D)),
            QStringLiteral("cut ") + QChar(0xD83D),
            QString(QChar(0xDE00)) + QStringLiteral(" rest"),
            QString(QChar(0xFEFF)) + QStringLiteral("marked"),
            QString(QChar(0xFFFE)) + QStringLiteral("swapped"),
            QStringLiteral("end") + QChar(0xFFFF),
            QStringLiteral("null") + QChar(u'\0') + QStringLiteral("inside"),
            "line\r\nend\t\x1f",
            QString(5000, QChar(u'x')),
            QString(700, QChar(0xDC00))};
}

class StoreTest : public ::testing::Test {
  protected:
    [[nodiscard]] QString path(const QString &name = "mailbox.store") const { return m_directory.filePath(name); }
    [[nodiscard]] std::unique_ptr<Store> open(const QString &name = "mailbox.store") const {
        return std::make_unique<Store>(path(name));
    }
    /// A folder of the store's root, made when it is missing.
    static FolderId folderNamed(Store &store, const QString &name) {
        const FolderId root = store.root().id;
        if (const auto known = store.findFolder(root, name))
            return known->id;
        return store.addFolder({.parent = root, .name = name}).id;
    }
    static ItemRecord withSubject(const QString &subject) {
        ItemRecord record;
        record.messageClass = "IPM.Note";
        record.subject = subject;
        return record;
    }
    /// The subjects of a folder's items by position.
    static QStringList subjects(Store &store, FolderId folder) {
        QStringList found;
        for (qint64 i = 1; i <= store.count(folder); ++i)
            found << store.nth(folder, i).value().subject;
        return found;
    }
    static ItemParts everyPart(const QString &text) {
        return {.bodies = Bodies{.plain = text, .html = QStringLiteral("<p>") + text},
                .properties =
                    QList<Property>{
                        {.name = "Text", .value = text},
                        {.name = "Number", .type = PropertyType::Number, .value = 1.5},
                        {.name = "Moment", .type = PropertyType::Date, .value = DateTime::fromDate(2004, 2, 29)},
                        {.name = "Yes", .type = PropertyType::YesNo, .value = true},
                        {.name = "Unset"}},
                .attachments =
                    QList<AttachmentRecord>{
                        {.fileName = text + QStringLiteral(".txt"), .displayName = text, .data = text.toUtf8()},
                        {.type = 5, .fileName = {}, .displayName = text, .data = {}}},
                .original = QByteArray("From: \0\xff\r\n\r\n", 12) + text.toUtf8()};
    }
    /// Everything that a store holds of an item besides its fields; attachments with their data and without numbers.
    static ItemParts partsOf(Store &store, ItemId item) {
        QList<AttachmentRecord> attachments = store.attachments(item);
        for (AttachmentRecord &attachment : attachments) {
            attachment.data = store.attachmentData(attachment.id);
            EXPECT_EQ(attachment.size, attachment.data.size());
            attachment.id = attachment.size = 0;
        }
        return {.bodies = store.bodies(item),
                .properties = store.properties(item),
                .attachments = attachments,
                .original = store.original(item)};
    }

    /// A directory in memory, where the machine has one: a test makes thousands of durable commits.
    static QString directoryTemplate() {
        const QString memory = "/dev/shm";
        return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + QStringLiteral("/store-XXXXXX");
    }

  private:
    QTemporaryDir m_directory{directoryTemplate()};
};

inline bool operator==(const ItemParts &left, const ItemParts &right) {
    return left.bodies == right.bodies && left.properties == right.properties &&
           left.attachments == right.attachments && left.original == right.original;
}

} // namespace desk

inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }
