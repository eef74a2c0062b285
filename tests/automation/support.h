/// What the suites share: the other process, a folder with a socket.
#pragma once

#include "automation/remote.h"
#include "support/steps.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <limits>
#include <thread>

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

/// Kills a process after a while.
[[nodiscard]] inline std::jthread killLater(pid_t process, std::chrono::microseconds delay) {
    return std::jthread([process, delay] {
        std::this_thread::sleep_for(delay);
        ::kill(process, SIGKILL);
    });
}

/// Milliseconds that the step takes when nothing else holds it up: the least of three times. What is waited for shows
/// in each of them.
template <class Step>
qint64 leastTime(Step &&step) {
    qint64 least = std::numeric_limits<qint64>::max();
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer timer;
        timer.start();
        step();
        least = std::min(least, timer.elapsed());
    }
    return least;
}

struct SocketFolder {
    [[nodiscard]] QString socket() const { return folder.filePath("host.socket"); }
    QTemporaryDir folder;
};
