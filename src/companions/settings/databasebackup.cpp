#include "companions/settings/databasebackup.h"

#include "orvelle/database/connection.h"
#include "platform/storage/hold.h"
#include "platform/storage/progress.h"
#include "platform/storage/seal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace settings {

namespace {

const QString title = QStringLiteral("Orvelle database backup 1");
const QString sumEnding = QStringLiteral(".sha256");

/// The database file of the program folder, whether it is there or not.
QString databaseFile() {
    const std::optional<QString> file = fncInstalledFile();
    if (!file)
        throw Failure(failures::invalidCall, "The database is on a server, where its own backup is to be made.");
    return *file;
}

/// Of whatever version: a database of tickets has these.
void requireTables(const storage::Counts &counts, const QString &file) {
    for (const char *table : {"tblTickets", "tblWork", "tblOtherSettings", "jet_properties"})
        if (!counts.contains(QString(table)))
            throw Failure(failures::unspecified,
                          QString("%1 is no database of tickets: it lacks the table %2.").arg(file, table));
}

QString contents(const storage::Counts &counts) {
    return QString("%1 tickets, %2 work rows").arg(counts["tblTickets"]).arg(counts["tblWork"]);
}

void writeSum(const QString &file, const QByteArray &sum) {
    storage::Draft draft(file + sumEnding);
    const QByteArray text = storage::writtenSums(title, {{QFileInfo(file).fileName(), sum}});
    QFile out(draft.path());
    if (!out.open(QFile::WriteOnly) || out.write(text) != text.size() || !out.flush())
        throw Failure(failures::diskFull, QString("%1 could not be written: %2.").arg(draft.path(), out.errorString()));
    out.close();
    draft.publish(storage::Draft::Taken::Replace);
}

/// The sum that the backup was given; empty for one without.
QByteArray knownSum(const QString &file) {
    constexpr qint64 largest = 65536;
    QFile sums(file + sumEnding);
    if (!sums.exists())
        return {};
    if (!sums.open(QFile::ReadOnly))
        throw Failure(failures::permissionDenied,
                      QString("%1 could not be read: %2.").arg(sums.fileName(), sums.errorString()));
    // The file may have got another name since, with its sum.
    return storage::readSums(sums.read(largest), title, sums.fileName()).first();
}

} // namespace

QStringList backUp(const QString &file, bool replace) {
    const QString source = databaseFile();
    if (!QFile::exists(source))
        throw Failure(failures::fileNotFound, QString("There is no database %1 to back up.").arg(source));
    const QString target = QFileInfo(file).absoluteFilePath();
    if (QFileInfo(target).isDir() || (QFileInfo::exists(target) && !replace))
        throw Failure(failures::fileExists, QString("%1 is there already and was left as it is. Name another file, or "
                                                    "say --replace to put the backup in its place.")
                                                .arg(target));
    if (QFileInfo(target).canonicalFilePath() == QFileInfo(source).canonicalFilePath())
        throw Failure(failures::fileExists, QString("%1 is the database itself. Name another file.").arg(target));
    QByteArray sum;
    storage::Counts counts;
    {
        storage::Draft draft(target);
        storage::ProgressLine line("ORVELLESETTINGS: " + QFileInfo(source).fileName());
        counts = storage::Moment({source}).copy(0, draft.path(), line.teller());
        requireTables(counts, source);
        sum = storage::sumOf(draft.path());
        // The sum of another copy would make this one look damaged.
        QFile::remove(target + sumEnding);
        draft.publish(replace ? storage::Draft::Taken::Replace : storage::Draft::Taken::Refuse);
    }
    writeSum(target, sum);
    return {QString("Backed up, read again and found whole: %1 (%2)").arg(target, contents(counts))};
}

QStringList restore(const QString &file) {
    const QString source = QFileInfo(file).absoluteFilePath();
    const QString target = databaseFile();
    if (!QFileInfo(source).isFile())
        throw Failure(failures::fileNotFound, QString("There is no backup %1.").arg(source));
    const QByteArray sum = knownSum(source);
    storage::Draft draft(target);
    storage::ProgressLine line("ORVELLESETTINGS: " + QFileInfo(source).fileName());
    const QByteArray copied = storage::copyWithSum(source, draft.path(), line.teller());
    if (!sum.isEmpty() && copied != sum)
        throw Failure(failures::unspecified, QString("The backup %1 is damaged: it is not what was backed up. Nothing "
                                                     "was put back; take another backup.")
                                                 .arg(source));
    const storage::Counts counts = storage::checkDatabase(draft.path());
    requireTables(counts, source);
    storage::Hold hold(target);
    const QString kept = target + storage::freeSuffix({target});
    const bool isThere = QFile::exists(target);
    hold.replace(draft, kept);
    QStringList lines{QString("Put back: %1 (%2)").arg(target, contents(counts))};
    if (isThere)
        lines << QString("What was there is kept as %1; delete it when you are sure that you don't need it.").arg(kept);
    if (sum.isEmpty())
        lines << QString("There was no check sum %1: that the database is whole was seen, not that it is the one that "
                         "was backed up.")
                     .arg(source + sumEnding);
    return lines;
}

} // namespace settings
