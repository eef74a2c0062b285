/// What the suites share: waiting by condition, the other process, a folder with a socket.
#pragma once

#include "automation/remote.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

/// Runs the event loop until the condition holds; false when it does not within 20 seconds.
template <class Condition>
bool eventually(Condition condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 20'000)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
}

/// The failure's number, 0 for none.
template <class Step>
qint32 failureOf(Step step) {
    const std::optional<Failure> failure = Attempt(step);
    return failure ? failure->number() : 0;
}

/// A peer program that is running its part; killed with its owner.
class Peer {
  public:
    Peer(const QStringList &arguments, const QByteArray &firstLine) {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(PEER_PROGRAM), arguments);
        EXPECT_TRUE(said(firstLine)) << "the peer said \"" << m_output.constData() << '"';
    }
    ~Peer() { kill(); }
    Peer(const Peer &) = delete;
    Peer &operator=(const Peer &) = delete;

    /// Waits for a line; the event loop runs, so that a host in this process serves.
    bool said(const QByteArray &line) {
        return eventually([&] {
                   m_output += m_process.readAllStandardOutput();
                   return m_output.split('\n').contains(line) || m_process.state() == QProcess::NotRunning;
               }) &&
               m_output.split('\n').contains(line);
    }
    void signal(int number) { ::kill(pid(), number); }
    void kill() {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.kill();
        eventually([&] { return m_process.state() == QProcess::NotRunning; });
    }
    [[nodiscard]] pid_t pid() const { return static_cast<pid_t>(m_process.processId()); }
    [[nodiscard]] bool isRunning() const { return m_process.state() == QProcess::Running; }

  private:
    QProcess m_process;
    QByteArray m_output;
};

class SocketFolder {
  public:
    [[nodiscard]] QString socket() const { return m_folder.filePath(QStringLiteral("host.socket")); }
    [[nodiscard]] const QTemporaryDir &folder() const { return m_folder; }

  private:
    QTemporaryDir m_folder;
};
