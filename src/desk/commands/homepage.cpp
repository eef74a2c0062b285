#include "desk/commands/homepage.h"

#include "desk/content/forms.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

namespace desk {
namespace {

/// A head longer than that is not looked through.
constexpr qint64 headSize = 65536;

QString attribute(const QString &tag, const QString &name) {
    const QRegularExpression pattern(QStringLiteral("\\b%1\\s*=\\s*(?:\"([^\"]*)\"|'([^']*)'|([^\\s>]+))").arg(name),
                                     QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(tag);
    return match.captured(1) + match.captured(2) + match.captured(3);
}

QString programNamedIn(const QString &page) {
    static const QRegularExpression comment(QStringLiteral("<!--.*?-->"),
                                            QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression meta(QStringLiteral("<meta\\b[^>]*>"), QRegularExpression::CaseInsensitiveOption);
    auto tags = meta.globalMatch(QString(page).remove(comment));
    while (tags.hasNext()) {
        const QString tag = tags.next().captured();
        if (attribute(tag, QStringLiteral("name")).compare(QStringLiteral("start-program"), Qt::CaseInsensitive) == 0)
            return attribute(tag, QStringLiteral("content"));
    }
    return {};
}

} // namespace

std::optional<QString> startProgramOf(const QString &homePageUrl, QString &problem) {
    QFile page(homePageFile(homePageUrl));
    if (page.fileName().isEmpty() || !page.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QString name = programNamedIn(QString::fromUtf8(page.read(headSize)));
    if (name.isEmpty())
        return std::nullopt;
    const bool isBareName = !name.contains(u'/') && !name.contains(u'\\') && !name.startsWith(u'.');
    const QFileInfo program(QFileInfo(page).absolutePath() + u'/' + name);
    if (!isBareName || !program.isFile() || !program.isExecutable()) {
        problem = QStringLiteral("The page %1 names the program \"%2\", which is no executable file of its folder.")
                      .arg(page.fileName(), name);
        return std::nullopt;
    }
    return program.filePath();
}

bool startProgram(const QString &program, const QString &profileFolder) {
    QProcess process;
    process.setProgram(program);
    process.setWorkingDirectory(QFileInfo(program).path());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ORVELLE_PROFILE"), profileFolder);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    const QString log = profileFolder + QStringLiteral("/started.log");
    process.setStandardOutputFile(log, QIODevice::Append);
    process.setStandardErrorFile(log, QIODevice::Append);
    return process.startDetached();
}

} // namespace desk
