#include "platform/scripting/shell.h"

#include "platform/launch/launcher.h"
#include "platform/registry/registry.h"
#include "platform/scripting/path.h"
#include "platform/window/window.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>

#include <pwd.h>
#include <unistd.h>

namespace scripting {

namespace {

/// What the component gives for anything that it can't find.
constexpr qint32 notThere = failures::automation(0x80070002);

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
        return launch::currentLauncher().handOver(QStringLiteral("xdg-open"), {link});
    QStringList parts = QProcess::splitCommand(command);
    if (parts.isEmpty())
        throw Failure(failures::invalidCall, QStringLiteral("There is no program to run."));
    const QString program = nativePath(parts.takeFirst());
    launch::currentLauncher().start(program, parts);
}

bool Shell::AppActivate(const QString &title) const { return window::activate(title); }

} // namespace scripting
