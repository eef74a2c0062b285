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
const QString deletedItems = QStringLiteral("\\\\Mailbox - Alma Tester\\Deleted Items");
const QString flagSubject = QStringLiteral("Folder is being monitored by Orvelle for Outlook");

/// A temporary folder. The program folder that all its profiles share is in it.
class Place {
  public:
    Place();
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    QString write(const QString &name, const QByteArray &bytes) const;

  private:
    QTemporaryDir m_folder;
};

/// One person's profile, with the desk and the program that run on it. What still runs ends with it.
class Station {
  public:
    /// \param profile  the profile's folder in the place.
    /// \param publicFile  the file of the public folders; empty for one of the profile's own.
    Station(const Place &place, QString user, const QString &profile, const QString &publicFile = {});
    ~Station();
    Station(const Station &) = delete;
    Station &operator=(const Station &) = delete;

    void startDesk();
    /// Starts the program; it may still have its first steps before it.
    void startOrvelle(const QStringList &arguments = {});
    [[nodiscard]] QProcess &desk() { return *m_desk; }
    [[nodiscard]] QProcess &orvelle() { return *m_orvelle; }
    /// What the program has written to standard error since its start.
    [[nodiscard]] QString orvelleErrors() const { return m_orvelleErrors; }
    void killDesk();
    void killOrvelle();
    /// SIGTERM, and the orderly end.
    void endOrvelle();
    void endDesk();

    /// Runs a program on the profile to its end. A status other than 0 fails the test.
    QByteArray run(const QString &program, const QStringList &arguments);
    QByteArray command(const QStringList &arguments);
    [[nodiscard]] QJsonArray list(const QString &folder);
    /// The number of a folder's items; 0 for a folder that isn't there.
    [[nodiscard]] int count(const QString &folder);
    [[nodiscard]] QJsonObject show(const QString &entryId);
    void settings(const QStringList &arguments);
    /// Lists, or repairs, what killed programs have left behind. REQUIRES: the desk runs.
    QJsonObject leftovers(const QStringList &options);
    /// Into the Inbox.
    void deliver(const QStringList &files);
    [[nodiscard]] bool folderExists(const QString &path);
    /// Takes the flag items away that killed programs have left behind.
    void removeFlagItems(const QString &folder = inbox);
    [[nodiscard]] QString profile() const { return m_profile; }
    [[nodiscard]] std::unique_ptr<QProcess> process(const QString &program, const QStringList &arguments) const;

  private:
    QString m_user;
    QString m_profile;
    QString m_programFolder;
    QStringList m_options;
    std::unique_ptr<QProcess> m_desk;
    std::unique_ptr<QProcess> m_orvelle;
    QString m_orvelleErrors;
};

/// The example's set-up: the ticket folder with its home page and form, the Inbox monitored, a confirmation.
class Helpdesk : public testing::Test, protected Place, protected Station {
  protected:
    Helpdesk();

    static bool waitFor(const std::function<bool()> &condition, int milliseconds = 20000);
    static QString property(const QJsonObject &item, const QString &name);
};

} // namespace whole
