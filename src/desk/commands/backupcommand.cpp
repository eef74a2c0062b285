#include "desk/commands/backupfolder.h"
#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/store/store.h"
#include "platform/storage/progress.h"
#include "platform/value/failure.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

namespace desk {
namespace {

/// What is told of each file.
struct Copied {
    QString name;
    qint64 bytes = 0;
    /// Of a store.
    std::optional<qint64> items;
};

void refuseTarget(const QString &target, bool replace) {
    const QFileInfo standing(target);
    if (!standing.exists() && !standing.isSymLink())
        return;
    const bool isEmptyFolder =
        standing.isDir() && !standing.isSymLink() &&
        QDir(target).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    if (isEmptyFolder)
        return;
    if (!standing.isDir() || standing.isSymLink() || !isBackup(target))
        throw Failure(failures::fileExists,
                      QStringLiteral("%1 is there and is no backup; it was left as it is. Name a folder that isn't "
                                     "there yet.")
                          .arg(target));
    if (!replace)
        throw Failure(failures::fileExists,
                      QStringLiteral("%1 is a backup already; it was left as it is. Name another folder, or say "
                                     "--replace.")
                          .arg(target));
}

/// What is not there is not made: an empty backup would look like one.
QString requiredFile(const QString &path, const QString &what) {
    if (!QFileInfo(path).isFile())
        throw Failure(failures::notFound,
                      QStringLiteral("There is no %1 %2. Name the profile with --profile, or with ORVELLE_PROFILE.")
                          .arg(what, path));
    return path;
}

QStringList formsOf(const QString &profile) {
    QStringList names;
    for (const QString &name : QDir(profile + u'/' + formsName).entryList(QDir::Files, QDir::Name))
        names << formsName + u'/' + name;
    return names;
}

class ProfileBackup {
  public:
    ProfileBackup(const QString &profile, const QString &target) : m_profile(profile), m_draft(target) {}

    void copyStores(const QStringList &files) {
        // What is left of a damaged store can pass for a database without a table, and so for a whole copy of one.
        for (const QString &file : files)
            static_cast<void>(Store(file, {.create = false}).storeId());
        const storage::Moment moment(files);
        const QStringList names{mailboxCopy, publicCopy};
        for (qsizetype at = 0; at < files.size(); ++at) {
            const QString copy = m_draft.makeFile(names[at]);
            storage::ProgressLine line(QStringLiteral("orvelle-desk: ") + names[at]);
            const storage::Counts counts = moment.copy(at, copy, line.teller());
            // As the desk would open it: a store, of a version that it knows.
            static_cast<void>(Store(copy, {.create = false}).storeId());
            add(names[at], storage::sumOf(copy), counts.value(QStringLiteral("items")));
        }
    }

    void copySmallFiles() {
        for (const QString &name : smallFiles + formsOf(m_profile)) {
            const QString file = m_profile + u'/' + name;
            if (QFileInfo(file).isFile())
                add(name, storage::copyWithSum(file, m_draft.makeFile(name)), std::nullopt);
        }
    }

    /// Last of all, since it is what makes a backup of the folder.
    void finish(bool replace) {
        const QString taken = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
        const QByteArray text = storage::writtenSums(backupTitle + QStringLiteral(", taken ") + taken, m_sums);
        QFile file(m_draft.makeFile(sumsFile));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush())
            throw Failure(failures::noDiskSpace,
                          QStringLiteral("%1 can't be written: %2.").arg(file.fileName(), file.errorString()));
        file.close();
        m_draft.publish(replace);
    }

    [[nodiscard]] const QList<Copied> &copied() const { return m_copied; }
    [[nodiscard]] const storage::Sums &sums() const { return m_sums; }

  private:
    void add(const QString &name, const QByteArray &sum, std::optional<qint64> items) {
        m_sums.insert(name, sum);
        m_copied.append({name, QFileInfo(m_draft.path(name)).size(), items});
    }

    QString m_profile;
    BackupDraft m_draft;
    storage::Sums m_sums;
    QList<Copied> m_copied;
};

void tell(const CommandLine &line, const QString &target, const ProfileBackup &backup) {
    if (line.json) {
        QJsonArray files;
        for (const Copied &each : backup.copied()) {
            QJsonObject file{{"name", each.name},
                             {"bytes", each.bytes},
                             {"sha256", QString::fromLatin1(backup.sums().value(each.name))}};
            if (each.items)
                file["items"] = *each.items;
            files.append(file);
        }
        printJson(QJsonObject{{"backup", target}, {"files", files}});
        return;
    }
    for (const Copied &each : backup.copied()) {
        const QString items = each.items ? QStringLiteral(", %1 items").arg(*each.items) : QString();
        printLine(QStringLiteral("%1\t%2 bytes%3").arg(each.name).arg(each.bytes).arg(items));
    }
    printLine(QStringLiteral("Backed up, read again and found whole: %1").arg(target));
}

} // namespace

int backupCommand(const CommandLine &line) {
    const QString target = QDir::cleanPath(QFileInfo(line.arguments.first()).absoluteFilePath());
    refuseTarget(target, line.replace);
    const QString profile = profileFolder(line.desk);
    const QString mailbox = requiredFile(profile + u'/' + mailboxCopy, QStringLiteral("mailbox"));
    const QString publicStore =
        requiredFile(Profile(line.desk).publicFile(), QStringLiteral("file of the public folders"));
    ProfileBackup backup(profile, target);
    backup.copyStores({mailbox, publicStore});
    backup.copySmallFiles();
    backup.finish(line.replace);
    tell(line, target, backup);
    return 0;
}

} // namespace desk
