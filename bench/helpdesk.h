// A helpdesk for benchmarks: a desk in this process, the program in this one or another, mails through both, and the
// floor below them.
#pragma once

#include "desk/host/desk.h"
#include "desk/store/store.h"
#include "orvelle/host/host.h"
#include "wallog.h"

#include <benchmark/benchmark.h>

#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <functional>
#include <memory>

/// The commits of one mail's road, file by file: the pages of each.
using MailWork = std::array<std::vector<int>, 3>;

/// A desk in this process with a helpdesk on it.
class Situation {
  public:
    Situation();

    [[nodiscard]] QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    [[nodiscard]] desk::Desk &desk() { return *m_desk; }
    [[nodiscard]] QString programFolder() const;
    [[nodiscard]] QString mailboxFile() const { return path("profile/mailbox.store"); }

    /// Gives a setting of the helpdesk its value, before the program starts.
    void set(const QString &name, const QString &value) const;

    /// Whether a copy of the program watches the folder: its flag item lies there.
    [[nodiscard]] bool watched() const { return m_intake.Items().Count() == 1; }
    [[nodiscard]] host::Items converted() const;
    /// What was committed since the last call.
    [[nodiscard]] MailWork work();

  private:
    void makeDatabase() const;
    /// Runs a step with the database of the program open.
    void withDatabase(const std::function<void()> &step) const;

    QTemporaryDir m_folder;
    std::unique_ptr<desk::Desk> m_desk;
    host::MAPIFolder m_tickets;
    host::MAPIFolder m_intake;
    std::vector<WalReader> m_logs;
};

/// Puts mails into the monitored folder, on a connection of its own as another process would.
class Feeder {
  public:
    explicit Feeder(const QString &mailboxFile) : m_store(mailboxFile) {}
    void put(const QByteArray &message);

  private:
    desk::Store m_store;
};

/// The program in a process of its own on the situation's desk, ended with this object.
class OtherProcess {
  public:
    explicit OtherProcess(Situation &situation);
    ~OtherProcess();
    OtherProcess(const OtherProcess &) = delete;
    OtherProcess &operator=(const OtherProcess &) = delete;

    [[nodiscard]] bool isWatching() const { return m_isWatching; }
    [[nodiscard]] qint64 id() const { return m_process.processId(); }

  private:
    QProcess m_process;
    bool m_isWatching = false;
};

struct Result {
    double secondsPerMail = 0;
    std::vector<MailWork> work;
};

/// Converts mails one after the other. The time is that from the desk's look at the folder, where it raises the event,
/// until the program has filed the mail.
/// \param put  puts the mail of that number into the folder.
Result convert(Situation &situation, int count, const std::function<void(int)> &put);
/// The same commits with as many pages each, through the bare database library, on files of their own.
class Floor {
  public:
    Floor();
    ~Floor();
    Floor(const Floor &) = delete;
    Floor &operator=(const Floor &) = delete;

    /// Seconds a mail.
    double replay(const std::vector<MailWork> &work);

  private:
    QTemporaryDir m_folder;
    std::vector<std::unique_ptr<class BareFile>> m_files;
};

/// What the road of a mail wrote, on average.
struct Volume {
    double commitsPerMail = 0;
    double kilobytesPerMail = 0;
};
Volume volumeOf(const Result &result);
void report(benchmark::State &state, const Result &result);
/// One line with the floor, measured here and now.
void printBesideFloor(const char *name, const Result &result);

/// A number from the environment above 0, or the other.
int numberFrom(const char *variable, int otherwise);
