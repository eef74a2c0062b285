// The settings program as a process, on an installation folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>

#include <memory>

class SettingsProgram : public ::testing::Test {
  protected:
    using Process = std::unique_ptr<QProcess>;

    Process start(const QStringList &arguments, const QString &output = {}) {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ORVELLE_HOME", m_home.path());
        process->setProcessEnvironment(environment);
        if (!output.isEmpty())
            process->setStandardOutputFile(output);
        process->start(SETTINGS_PROGRAM, arguments);
        return process;
    }
    /// Waits for the end. Gives the status.
    static int finish(QProcess &process) {
        process.closeWriteChannel();
        EXPECT_TRUE(process.state() == QProcess::NotRunning || process.waitForFinished(120000));
        return process.exitCode();
    }
    [[nodiscard]] QString path(const QString &name) const { return m_home.filePath(name); }

    QTemporaryDir m_home;
};
