#include "platform/registry/registry.h"

#include "platform/registry/hive.h"
#include "platform/value/failure.h"
#include "platform/value/filelock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace registry {

ProcessLocal<QString> fileOverride;

namespace {

constexpr std::chrono::seconds patience{10};

/// Writers take turns by this.
class Turn {
  public:
    Turn() {
        QDir().mkpath(QFileInfo(file()).path());
        m_lock = FileLock::take(file() + QStringLiteral(".lock"), patience);
        if (!m_lock)
            throw Failure(failures::permissionDenied,
                          QStringLiteral("The registry file %1 is kept locked by another program. End that program and "
                                         "try again.")
                              .arg(file()));
    }

  private:
    std::unique_ptr<FileLock> m_lock;
};

/// The file's content; nothing where there is no file.
std::optional<QByteArray> content() {
    QFile source(file());
    if (!source.exists())
        return std::nullopt;
    if (!source.open(QIODevice::ReadOnly))
        throw Failure(failures::permissionDenied,
                      QStringLiteral("The registry file %1 can't be read: %2.").arg(file(), source.errorString()));
    return source.readAll();
}

QString freeNameBeside(const QString &path) {
    for (int number = 1;; ++number) {
        QString name = QStringLiteral("%1.damaged-%2").arg(path).arg(number);
        if (!QFileInfo::exists(name))
            return name;
    }
}

/// REQUIRES: the turn is ours. The file is looked at again, since another process may have put it right.
void setAside() {
    const std::optional<QByteArray> bytes = content();
    if (!bytes || Hive::parse(*bytes))
        return;
    const QString kept = freeNameBeside(file());
    if (!QFile::rename(file(), kept))
        throw Failure(failures::permissionDenied,
                      QStringLiteral("The registry file %1 is damaged and can't be put aside.").arg(file()));
    qCritical("The registry file %s is damaged. It is kept as %s, and an empty one takes its place.",
              qUtf8Printable(file()), qUtf8Printable(kept));
}

/// What the file held when it was read last.
struct Known {
    QByteArray bytes;
    Hive hive;
};
ProcessLocal<Known> known;

std::optional<Hive> load() {
    const std::optional<QByteArray> bytes = content();
    if (!bytes)
        return Hive();
    if (known->bytes == *bytes && !bytes->isEmpty())
        return known->hive;
    std::optional<Hive> hive = Hive::parse(*bytes);
    if (hive)
        known = Known{*bytes, *hive};
    return hive;
}

/// REQUIRES: the turn is ours.
Hive loadForWriting() {
    if (std::optional<Hive> hive = load())
        return *hive;
    setAside();
    return load().value_or(Hive());
}

/// REQUIRES: the turn is ours.
void save(const Hive &hive) {
    QSaveFile target(file());
    const QByteArray bytes = hive.serialize();
    const bool isOpen = target.open(QIODevice::WriteOnly);
    // Before anything stands in it.
    if (isOpen)
        target.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    if (isOpen && target.write(bytes) == bytes.size() && target.commit())
        return;
    const bool isFull = target.error() == QFileDevice::ResourceError;
    throw Failure(isFull ? failures::diskFull : failures::permissionDenied,
                  QStringLiteral("The registry file %1 can't be written: %2.").arg(file(), target.errorString()));
}

} // namespace

QString file() {
    if (!fileOverride.get().isEmpty())
        return fileOverride;
    const QString profile = qEnvironmentVariable("ORVELLE_PROFILE");
    const QString folder = profile.isEmpty()
                               ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/orvelle"
                               : profile;
    return folder + QStringLiteral("/registry.ini");
}

std::optional<QString> read(const QString &path) {
    std::optional<Hive> hive = load();
    if (!hive) {
        const Turn turn;
        hive = loadForWriting();
    }
    return hive->text(path);
}

void write(const QString &path, const QString &text) {
    const Turn turn;
    Hive hive = loadForWriting();
    if (hive.text(path) == text)
        return;
    hive.set(path, text);
    save(hive);
}

void remove(const QString &path) {
    const Turn turn;
    Hive hive = loadForWriting();
    if (hive.remove(path))
        save(hive);
}

} // namespace registry
