#include "desk/commands/backupfolder.h"
#include "desk/commands/commands.h"
#include "desk/commands/output.h"
#include "desk/store/store.h"
#include "platform/storage/access.h"
#include "platform/storage/durable.h"
#include "platform/storage/hold.h"
#include "platform/storage/progress.h"
#include "platform/value/failure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QSettings>

namespace desk {
namespace {

/// One file of the backup, written beside the one that it is to replace and found to be what was backed up.
struct Staged {
    QString name;
    std::unique_ptr<storage::Draft> draft;

    [[nodiscard]] bool isStore() const { return name == mailboxCopy || name == publicCopy; }
};

/// The folder that is put back and where to.
class Restoring {
  public:
    Restoring(QString backup, const CommandLine &line)
        : m_backup(std::move(backup)), m_profile(profileFolder(line.desk)), m_sums(sumsOf(m_backup)) {
        if (!m_sums.contains(mailboxCopy) || !m_sums.contains(publicCopy))
            throw Failure(failures::unspecified, QStringLiteral("The backup %1 lacks a store.").arg(m_backup));
        m_publicFile = publicFile(line);
        if (line.withoutPublic)
            m_sums.remove(publicCopy);
    }

    /// Nothing of the profile is changed by this.
    void stageAll() {
        makeFolders();
        for (auto sum = m_sums.constBegin(); sum != m_sums.constEnd(); ++sum)
            m_staged.push_back({sum.key(), staged(sum.key(), sum.value())});
    }

    /// All files at once would be best; a mark that every desk respects is the next best.
    void putInPlace() {
        std::vector<std::unique_ptr<storage::Hold>> holds;
        QStringList targets;
        for (const Staged &each : m_staged) {
            targets << each.draft->target();
            holds.push_back(each.isStore() ? std::make_unique<storage::Hold>(each.draft->target()) : nullptr);
        }
        const QString suffix = storage::freeSuffix(targets);
        setMark();
        for (std::size_t at = 0; at < m_staged.size(); ++at) {
            storage::Draft &draft = *m_staged[at].draft;
            const QString kept = draft.target() + suffix;
            if (QFileInfo::exists(draft.target()))
                m_kept << kept;
            if (holds[at]) {
                holds[at]->replace(draft, kept);
            } else {
                if (QFileInfo::exists(draft.target()))
                    storage::keepAs(draft.target(), kept);
                draft.publish(storage::Draft::Taken::Replace);
            }
        }
        QFile::remove(restoreMark(m_profile));
        storage::syncFolder(m_profile);
    }

    [[nodiscard]] const QString &profile() const { return m_profile; }
    [[nodiscard]] const QString &publicPath() const { return m_publicFile; }
    [[nodiscard]] const QStringList &kept() const { return m_kept; }
    [[nodiscard]] QStringList names() const { return m_sums.keys(); }

  private:
    /// Where the public folders belong: as named, or as the settings of the backup have it.
    [[nodiscard]] QString publicFile(const CommandLine &line) const {
        if (!line.desk.publicFile.isEmpty())
            return QFileInfo(line.desk.publicFile).absoluteFilePath();
        const QString remembered = QSettings(m_backup + QStringLiteral("/desk.ini"), QSettings::IniFormat)
                                       .value(QStringLiteral("public"))
                                       .toString();
        return remembered.isEmpty() ? m_profile + u'/' + publicCopy : remembered;
    }

    [[nodiscard]] QString targetOf(const QString &name) const {
        return name == publicCopy ? m_publicFile : m_profile + u'/' + name;
    }

    void makeFolders() const {
        constexpr auto ownersFolder = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
        QDir().mkpath(QFileInfo(m_profile).path());
        QDir().mkdir(m_profile, ownersFolder);
        QDir().mkdir(m_profile + u'/' + formsName, ownersFolder);
        if (m_sums.contains(publicCopy) && !QFileInfo(QFileInfo(m_publicFile).path()).isDir())
            throw Failure(failures::pathNotFound,
                          QStringLiteral("The public folders belong into %1, and there is no such folder. Make it, or "
                                         "name another file with --public, or say --without-public.")
                              .arg(m_publicFile));
    }

    [[nodiscard]] std::unique_ptr<storage::Draft> staged(const QString &name, const QByteArray &sum) const {
        const QString source = m_backup + u'/' + name;
        auto draft = std::make_unique<storage::Draft>(targetOf(name));
        storage::ProgressLine line(QStringLiteral("orvelle-desk: ") + name);
        if (storage::copyWithSum(source, draft->path(), line.teller()) != sum)
            throw Failure(failures::unspecified,
                          QStringLiteral("The backup is damaged: %1 is not what was backed up. Nothing was put back; "
                                         "take another backup.")
                              .arg(source));
        if (name == mailboxCopy || name == publicCopy) {
            storage::checkDatabase(draft->path());
            static_cast<void>(Store(draft->path(), {.create = false}).storeId());
        }
        if (name == publicCopy)
            storage::shareWithGroupOf(draft->descriptor(), QFileInfo(m_publicFile).path());
        return draft;
    }

    void setMark() const {
        storage::Draft mark(restoreMark(m_profile));
        mark.publish(storage::Draft::Taken::Replace);
    }

    QString m_backup;
    QString m_profile;
    storage::Sums m_sums;
    QString m_publicFile;
    std::vector<Staged> m_staged;
    QStringList m_kept;
};

void tell(const CommandLine &line, const Restoring &restoring) {
    if (line.json) {
        printJson(QJsonObject{{"profile", restoring.profile()},
                              {"files", QJsonArray::fromStringList(restoring.names())},
                              {"kept", QJsonArray::fromStringList(restoring.kept())}});
        return;
    }
    printLine(
        QStringLiteral("Put back into %1: %2").arg(restoring.profile(), restoring.names().join(QStringLiteral(", "))));
    if (restoring.kept().isEmpty())
        return;
    printLine(QStringLiteral("What was there is kept; delete it when you are sure that you don't need it:"));
    for (const QString &kept : restoring.kept())
        printLine(QStringLiteral("    ") + kept);
}

} // namespace

int restoreCommand(const CommandLine &line) {
    Restoring restoring(QDir::cleanPath(QFileInfo(line.arguments.first()).absoluteFilePath()), line);
    restoring.stageAll();
    restoring.putInPlace();
    if (!line.desk.publicFile.isEmpty() || !line.desk.user.isEmpty())
        // Remembers what was named, as every command does.
        static_cast<void>(Profile(line.desk));
    tell(line, restoring);
    return 0;
}

} // namespace desk
