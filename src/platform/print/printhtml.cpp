#include "platform/print/printhtml.h"

#include "platform/launch/launcher.h"
#include "platform/value/failure.h"
#include "platform/window/window.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace print {

namespace {

/// A page that takes longer is taken for one that never ends.
constexpr int layoutPatience = 20000;

void lay(const QString &page, const QString &result, const QString &title) {
    QProcess program;
    program.start(QCoreApplication::applicationDirPath() + "/orvelle-print", {page, result, title});
    if (!program.waitForStarted())
        throw Failure(
            failures::fileNotFound,
            QStringLiteral("The program %1 can't be started. Install it beside this one.").arg(program.program()));
    if (!program.waitForFinished(layoutPatience) || program.exitStatus() != QProcess::NormalExit ||
        program.exitCode() != 0)
        throw Failure(failures::unspecified, QStringLiteral("The page %1 can't be laid out for printing. %2")
                                                 .arg(title, QString::fromLocal8Bit(program.readAllStandardError())));
}

/// The title as a name for a file, whatever mail it comes from.
QString fileName(QString title) {
    static const QRegularExpression other(QStringLiteral("[^\\w .,()+@-]+"),
                                          QRegularExpression::UseUnicodePropertiesOption);
    constexpr qsizetype longest = 60;
    title = title.replace(other, QStringLiteral("_")).left(longest).trimmed();
    return title.isEmpty() || title.startsWith(u'.') ? "page" + title : title;
}

/// Copies the file under the first free name; gives that.
QString keep(const QString &result, const QString &name) {
    const QString folder = printoutFolder();
    QDir().mkpath(folder);
    constexpr int attempts = 10000;
    for (int number = 1; number < attempts; ++number) {
        const QString path = QStringLiteral("%1/%2%3.pdf")
                                 .arg(folder, name, number == 1 ? QString() : QStringLiteral(" (%1)").arg(number));
        if (QFile::copy(result, path))
            return path;
        if (!QFile::exists(path))
            break;
    }
    throw Failure(failures::permissionDenied, QStringLiteral("It can't be kept in %1 either.").arg(folder));
}

void toPrinter(const QString &html, const QString &title) {
    const QTemporaryDir folder;
    const QString page = folder.filePath(QStringLiteral("page.html"));
    const QString result = folder.filePath(fileName(title) + ".pdf");
    QFile file(page);
    if (!file.open(QIODevice::WriteOnly) || file.write(html.toUtf8()) < 0 || !file.flush())
        throw Failure(failures::permissionDenied,
                      QStringLiteral("The page %1 can't be printed: %2.").arg(title, file.errorString()));
    file.close();
    lay(page, result, title);
    const auto failure = Attempt([&] { launch::currentLauncher().handOver("lp", {"-t", title, "--", result}); });
    if (!failure)
        return;
    const QString reason =
        QStringLiteral("No printer took \"%1\".\r\n%2\r\n").arg(title, failure->description().trimmed());
    const auto kept = [&] { return QStringLiteral("It is kept as %1").arg(keep(result, fileName(title))); };
    QString outcome;
    const auto notKept = Attempt([&] { outcome = kept(); });
    window::msgBox(reason + (notKept ? notKept->description() : outcome), window::Buttons::OK,
                   notKept ? window::Icon::Critical : window::Icon::Information, title);
}

} // namespace

void printHtml(const QString &html, const QString &title) {
    if (const auto failure = Attempt([&] { toPrinter(html, title); }))
        window::msgBox(failure->description(), window::Buttons::OK, window::Icon::Critical, title);
}

QString printoutFolder() {
    const QString profile = qEnvironmentVariable("ORVELLE_PROFILE");
    return profile.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)
                             : profile + "/printouts";
}

} // namespace print
