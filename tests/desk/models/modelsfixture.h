/// The stores of a person, another connection to them as another process has, and models that a tester watches.
#pragma once

#include "desk/content/mailboxes.h"
#include "desk/content/storechanges.h"
#include "support/steps.h"

#include <QAbstractItemModelTester>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>

namespace desk {

class ModelsTest : public ::testing::Test {
  protected:
    static DateTime day(int number) { return DateTime{40000.0 + number}; }
    static ItemRecord item(const QString &subject, int received, const QString &sender = "Ann") {
        ItemRecord record;
        record.messageClass = "IPM.Note";
        record.subject = subject;
        record.senderName = sender;
        record.receivedAt = day(received);
        return record;
    }
    /// What the desk does a few times a second.
    void look() { m_mailboxes.changes().look(); }
    /// As the tester would be told by a view: fails the test when a model breaks a rule of its kind.
    static std::unique_ptr<QAbstractItemModelTester> watched(QAbstractItemModel &model) {
        return std::make_unique<QAbstractItemModelTester>(&model,
                                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    }

    QTemporaryDir m_directory{QFileInfo("/dev/shm").isWritable() ? "/dev/shm/models-XXXXXX" : "models-XXXXXX"};
    Mailboxes m_mailboxes{Profile({.profile = m_directory.path(), .user = "Alma Tester"})};
    Store &m_store = m_mailboxes.publicStore();
    FolderId m_folder = m_store.addFolder({.parent = m_store.root().id, .name = "Tickets"}).id;
    Store m_other{m_store.path()};
};

} // namespace desk

inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }
