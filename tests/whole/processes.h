// A helpdesk of real processes: a desk, the program, and the command line that people have, on a temporary profile.
#pragma once

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace whole {

const QString ticketFolder = QStringLiteral("\\\\Public Folders\\Helpdesk");
const QString inbox = QStringLiteral("\\\\Mailbox - Alma Tester\\Inbox");
const QString converted = inbox + QStringLiteral("\\Converted");
const QString flagSubject = QStringLiteral("Folder is being monitored by Orvelle for Outlook");

/// The example's set-up: the ticket folder with its home page and form, the Inbox monitored, a confirmation.
class Helpdesk : public testing::Test {
  protected:
    Helpdesk();
    ~Helpdesk() override;

    void startDesk();
    /// Starts the program and waits until it has nothing more to do at once: it watches the Inbox, or lives on.
    void startOrvelle(const QStringList &arguments = {});
    [[nodiscard]] QProcess &desk() { return *m_desk; }
    [[nodiscard]] QProcess &orvelle() { return *m_orvelle; }
    /// What the program has written to standard error.
    [[nodiscard]] QString orvelleErrors() const { return m_orvelleErrors; }
    void killDesk();
    void killOrvelle();
    /// SIGTERM, and the orderly end.
    void endOrvelle();
    void endDesk();

    /// Runs orvelle-desk with these arguments to its end; its output. A status other than 0 fails the test.
    QByteArray command(const QStringList &arguments);
    [[nodiscard]] QJsonArray list(const QString &folder);
    [[nodiscard]] QJsonObject show(const QString &entryId);
    void settings(const QStringList &arguments);
    void deliver(const QStringList &files);
    [[nodiscard]] bool folderExists(const QString &path);
    /// Takes the flag items away that killed programs have left behind.
    void removeFlagItems();

    QString write(const QString &name, const QByteArray &bytes) const;
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }

    static bool waitFor(const std::function<bool()> &condition, int milliseconds = 20000);
    static QString property(const QJsonObject &item, const QString &name);

  private:
    [[nodiscard]] std::unique_ptr<QProcess> process(const QString &program, const QStringList &arguments) const;
    void run(const QString &program, const QStringList &arguments);

    QTemporaryDir m_folder;
    std::unique_ptr<QProcess> m_desk;
    std::unique_ptr<QProcess> m_orvelle;
    QString m_orvelleErrors;
};

} // namespace whole
