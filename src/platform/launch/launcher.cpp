#include "platform/launch/launcher.h"

#include "platform/value/failure.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <unistd.h>

namespace launch {

ProcessLocal<std::shared_ptr<Launcher>> launcher;

namespace {

/// What the shell's components give for anything that they can't find.
constexpr qint32 notThere = failures::automation(0x80070002);

[[noreturn]] void cannotStart(const QString &program) {
    throw Failure(
        notThere,
        QStringLiteral("The program %1 can't be started. Check that it is there and may be run.").arg(program));
}

class MachineLauncher : public Launcher {
  public:
    void start(const QString &program, const QStringList &arguments) override {
        const QString found = find(program);
        if (found.isEmpty() || !QProcess::startDetached(found, arguments))
            cannotStart(program);
    }

    void handOver(const QString &program, const QStringList &arguments) override {
        // A browser that is the first of its kind to run may take the place of the program that opened it.
        constexpr int patience = 3000;
        QTemporaryFile said;
        auto process = std::make_unique<QProcess>();
        process->setStandardInputFile(QProcess::nullDevice());
        process->setStandardOutputFile(QProcess::nullDevice());
        process->setStandardErrorFile(said.open() ? said.fileName() : QProcess::nullDevice());
        process->setChildProcessModifier([] { ::setsid(); });
        process->start(find(program), arguments);
        if (!process->waitForStarted())
            cannotStart(program);
        if (!process->waitForFinished(patience)) {
            // Dropping the object would end the program.
            QObject::connect(process.get(), &QProcess::finished, process.get(), &QObject::deleteLater);
            static_cast<void>(process.release());
            return;
        }
        if (process->exitStatus() != QProcess::NormalExit || process->exitCode() != 0)
            throw Failure(notThere, QStringLiteral("%1 can't pass on %2 (status %3). %4")
                                        .arg(program, arguments.last())
                                        .arg(process->exitCode())
                                        .arg(QString::fromLocal8Bit(said.readAll()).trimmed()));
    }

  private:
    static QString find(const QString &program) {
        return program.contains(u'/') ? program : QStandardPaths::findExecutable(program);
    }
};

} // namespace

Launcher &currentLauncher() {
    static MachineLauncher machine;
    return launcher.get() ? *launcher.get() : machine;
}

} // namespace launch
