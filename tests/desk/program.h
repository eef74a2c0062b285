/// The real orvelle-desk as processes on a temporary profile.
#pragma once

#include "automation/remote.h"
#include "platform/value/convert.h"
#include "support/files.h"
#include "support/steps.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

struct Outcome {
    int status = -1;
    QByteArray out;
    QByteArray error;

    [[nodiscard]] QJsonDocument json() const {
        QJsonParseError problem{};
        const QJsonDocument document = QJsonDocument::fromJson(out, &problem);
        EXPECT_EQ(problem.error, QJsonParseError::NoError) << out.toStdString();
        return document;
    }
};

class DeskProgramTest : public ::testing::Test {
  protected:
    [[nodiscard]] QString profile() const { return m_folder.filePath(QStringLiteral("profile")); }
    [[nodiscard]] QString file(const QString &name) const { return m_folder.filePath(name); }
    QString written(const QString &name, const QByteArray &bytes) const { return writtenFile(file(name), bytes); }

    [[nodiscard]] QStringList withProfile(const QStringList &arguments) const {
        return QStringList{"--profile", profile(), "--user", "Alma Tester"} + arguments;
    }
    [[nodiscard]] Outcome run(const QStringList &arguments) const {
        QProcess process;
        process.start(QStringLiteral(DESK_PROGRAM), withProfile(arguments));
        EXPECT_TRUE(process.waitForFinished(30'000)) << process.errorString().toStdString();
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
                process.readAllStandardError()};
    }
    /// Runs a command that is to succeed, with --json.
    [[nodiscard]] QJsonDocument json(const QStringList &arguments) const {
        const Outcome outcome = run(arguments + QStringList{"--json"});
        EXPECT_EQ(outcome.status, 0) << outcome.error.toStdString();
        return outcome.json();
    }
    [[nodiscard]] qsizetype count(const QString &folder) const {
        return json({"list", folder, "--count"}).object()["count"].toInteger();
    }

    /// Starts the desk and waits until it is ready.
    void startDesk(const QStringList &arguments = {}) {
        m_desk.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_desk.start(QStringLiteral(DESK_PROGRAM), withProfile(arguments));
        ASSERT_TRUE(m_desk.waitForStarted());
        ASSERT_TRUE(m_desk.waitForReadyRead(30'000));
        ASSERT_TRUE(m_desk.readLine().startsWith("ready "));
    }
    /// The desk waits for whoever is still connected; a client of the test goes before.
    int endDesk() {
        m_desk.terminate();
        EXPECT_TRUE(m_desk.waitForFinished(30'000));
        return m_desk.exitStatus() == QProcess::NormalExit ? m_desk.exitCode() : -1;
    }
    void TearDown() override {
        if (m_desk.state() == QProcess::NotRunning)
            return;
        m_desk.kill();
        m_desk.waitForFinished();
    }
    [[nodiscard]] std::unique_ptr<automation::Client> connect(std::function<void()> gone = {}) const {
        return automation::Client::connect(profile() + QStringLiteral("/desk.socket"), std::move(gone));
    }

    QTemporaryDir m_folder;
    QProcess m_desk;
};

const QString inboxPath = QStringLiteral("\\\\Mailbox - Alma Tester\\Inbox");
