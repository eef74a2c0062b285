// The situation of whole-program tests: one desk with a helpdesk on it, and any number of copies of the program.
#pragma once

#include "automation/remote.h"
#include "desk/host/desk.h"
#include "orvelle/host/host.h"
#include "orvelle/program/programrun.h"
#include "support/counting.h"
#include "support/environment.h"
#include "support/program.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <list>

namespace support {

/// A mail as it comes in.
struct Mail {
    QString subject = "The printer is jammed";
    QString from = "\"Cal Caller\" <cal@example.org>";
    QString text = "It makes a noise.";
    /// Sent beside the text when not empty.
    QString html{};
    struct File {
        QString name;
        QByteArray content;
    };
    QList<File> files{};

    [[nodiscard]] QByteArray bytes() const;
};

/// One copy of the program. A question or a start of a program that was not announced fails the test.
class Copy {
  public:
    explicit Copy(ProgramSetup setup) : run(std::move(setup), [this] { ++ends; }) {}

    /// Runs a step of the test inside the copy.
    template <class Step>
    auto in(Step &&step) {
        const ProgramCopy::Scope scope(run.copy());
        return step();
    }

    /// How often the run told that it has ended.
    int ends = 0;
    ProgramRun run;
    Answers answers{run.copy()};
    Launches launches{run.copy()};
};

/// A desk of "Alma Tester" on a temporary profile: the ticket folder "Helpdesk" in the public folders, shown in an
/// Explorer; the mail folder "Support" in the mailbox, which the settings name as monitored; a ticket database. The
/// clock stands at noon of 5 March 2024, the region is the United States.
class Helpdesk : public testing::Test {
  protected:
    Helpdesk();
    ~Helpdesk() override;

    [[nodiscard]] host::Application app() const { return host::Application(m_desk->application()); }
    [[nodiscard]] host::NameSpace mapi() const { return app().GetNamespace("MAPI"); }
    [[nodiscard]] host::MAPIFolder mailbox() const { return mapi().Folders("Mailbox - Alma Tester"); }
    [[nodiscard]] host::MAPIFolder tickets() const { return m_tickets; }
    [[nodiscard]] host::MAPIFolder intake() const { return m_intake; }
    [[nodiscard]] host::Explorer explorer() const { return m_explorer; }
    [[nodiscard]] desk::Desk &desk() { return *m_desk; }
    /// Ends the host.
    void closeDesk() { m_desk.reset(); }

    /// A message comes into a folder, as from another process.
    void deliver(const Mail &mail, const host::MAPIFolder &folder);
    void deliver(const Mail &mail) { deliver(mail, m_intake); }
    /// An item of any class, saved in a folder.
    static host::Item put(const host::MAPIFolder &folder, const QString &messageClass, const QString &subject);
    /// The subjects of a folder's items in their order.
    static QStringList subjects(const host::MAPIFolder &folder);
    static QStringList folderNames(const host::MAPIFolder &folder);
    /// A custom property as a text; "(none)" where the item has none of that name.
    static QString property(const host::Item &item, const QString &name);
    /// The messages that have gone out, in the order of their file names.
    [[nodiscard]] QList<QByteArray> outgoing() const;

    /// Writes a value of the other settings into the database.
    void setSetting(const QString &name, const QString &value);
    void setEmailFolders(const QStringList &paths) { setSetting("EmailFolders", paths.join("\r\n")); }
    /// Each row of a query as a text: the columns parted by bars, "Null" for Null.
    QStringList rows(const QString &query, const QStringList &columns);
    /// Runs a step in a copy of its own that has the database open.
    void withDatabase(const std::function<void()> &step);
    /// Takes the client tools away from the user, or installs them.
    void setClientTools(bool installed);

    /// A copy that is not started yet; it lives as long as the test.
    Copy &newCopy(const QString &command = {});
    Copy &start(const QString &command = {});
    /// Copies that start from here on reach the desk over its socket.
    void connectBySocket();
    [[nodiscard]] const automation::Client &client() const { return *m_client; }
    /// What copies that start from here on ask of the host.
    Counting::Log countQuestions();
    /// Copies that work from an event loop, as the program does in a process of its own.
    void runInEventLoop() { m_ownLoop = true; }
    /// Copies that share the file by which an instance knows another one.
    void shareInstanceFile() { m_instanceFile = path("orvelle.lock"); }

    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] QString programFolder() const;

  private:
    void makeDatabase();
    void writeForm() const;

    QTemporaryDir m_folder;
    /// Other tests run beside this one: the folder for temporary files is its own too.
    const EnvironmentValue m_temp{"TMPDIR", path("temp").toLocal8Bit()};
    std::unique_ptr<desk::Desk> m_desk;
    host::MAPIFolder m_tickets;
    host::MAPIFolder m_intake;
    host::Explorer m_explorer;
    QString m_instanceFile;
    bool m_ownLoop = false;
    Counting::Log m_questions;
    std::unique_ptr<automation::Client> m_client;
    std::list<Copy> m_copies;
};

} // namespace support
