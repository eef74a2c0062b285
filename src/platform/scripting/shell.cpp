#include "platform/scripting/shell.h"

#include "platform/registry/registry.h"
#include "platform/scripting/path.h"
#include "platform/window/window.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <pwd.h>
#include <unistd.h>

namespace scripting {

ProcessLocal<std::shared_ptr<Launcher>> launcher;

namespace {

/// What the component gives for anything that it can't find.
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

QString loginName() {
    const passwd *entry = getpwuid(getuid());
    return entry ? QString::fromLocal8Bit(entry->pw_name) : qEnvironmentVariable("USER");
}

/// A text that is a link, in the form that applications here know; empty for any other text. A drive's letter is no
/// scheme.
QString linkOf(const QString &text) {
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+:"));
    static const QRegularExpression fileScheme(QStringLiteral("^file:/*"), QRegularExpression::CaseInsensitiveOption);
    if (text.startsWith(u"www.", Qt::CaseInsensitive))
        return "http://" + text;
    if (text.startsWith(QStringLiteral("\\\\")))
        return "smb:" + nativePath(text);
    if (text.startsWith(u"file:", Qt::CaseInsensitive))
        return nativePath(text).replace(fileScheme, QStringLiteral("file:///"));
    return scheme.match(text).hasMatch() ? text : QString();
}

} // namespace

Launcher &currentLauncher() {
    static MachineLauncher machine;
    return launcher.get() ? *launcher.get() : machine;
}

QString Shell::RegRead(const QString &name) const {
    const std::optional<QString> text = registry::read(name);
    if (!text)
        throw Failure(notThere, QStringLiteral("Unable to open registry key \"%1\" for reading.").arg(name));
    return *text;
}

void Shell::RegWrite(const QString &name, const QString &value, const QString &type) const {
    if (type != QStringLiteral("REG_SZ"))
        throw Failure(failures::invalidCall, QStringLiteral("The registry keeps texts only, not %1.").arg(type));
    registry::write(name, value);
}

QString Shell::ExpandEnvironmentStrings(const QString &text) const {
    static const QRegularExpression variable(QStringLiteral("%([^%]+)%"));
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QString expanded;
    qsizetype end = 0;
    for (auto matches = variable.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const QString name = match.captured(1);
        const bool isLogin = name.compare(u"USERNAME", Qt::CaseInsensitive) == 0;
        expanded += text.mid(end, match.capturedStart() - end);
        expanded += environment.value(name, isLogin ? loginName() : match.captured());
        end = match.capturedEnd();
    }
    return expanded + text.mid(end);
}

void Shell::Run(const QString &command, qint32 /*windowStyle*/) const {
    if (const QString link = linkOf(command); !link.isEmpty())
        return currentLauncher().handOver(QStringLiteral("xdg-open"), {link});
    QStringList parts = QProcess::splitCommand(command);
    if (parts.isEmpty())
        throw Failure(failures::invalidCall, QStringLiteral("There is no program to run."));
    const QString program = nativePath(parts.takeFirst());
    currentLauncher().start(program, parts);
}

bool Shell::AppActivate(const QString &title) const { return window::activate(title); }

} // namespace scripting
