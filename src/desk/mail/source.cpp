#include "desk/mail/source.h"

#include "desk/mail/mbox.h"
#include "platform/value/failure.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace desk {
namespace {

QString tooLong(qint64 maximumSize) {
    return QString("The message is longer than %1 bytes and was passed over.").arg(maximumSize);
}

/// Whether a device, a pipe or a socket stands there, of which nobody knows when its bytes come and end.
bool isSpecial(const QString &path) {
    struct stat found {};
    return ::stat(QFile::encodeName(path).constData(), &found) == 0 && !S_ISREG(found.st_mode) &&
           !S_ISDIR(found.st_mode);
}

QString noFile() {
    return QStringLiteral("It is a pipe, a socket or a device and no file; save its messages to a file first.");
}

/// The files of a list, one message each.
class FileSource final : public MessageSource {
  public:
    FileSource(QStringList paths, qint64 maximumSize) : m_paths(std::move(paths)), m_maximumSize(maximumSize) {}

    bool next(SourceMessage &message) override {
        if (m_next >= m_paths.size())
            return false;
        message = {m_paths.at(m_next++), {}, {}};
        if (isSpecial(message.name)) {
            message.error = noFile();
            return true;
        }
        QFile file(message.name);
        if (!file.open(QIODevice::ReadOnly)) {
            message.error = QString("The message could not be read: %1").arg(file.errorString());
            return true;
        }
        message.bytes = file.read(m_maximumSize + 1);
        if (message.bytes.size() > m_maximumSize) {
            message.bytes.clear();
            message.error = tooLong(m_maximumSize);
        } else if (file.error() != QFileDevice::NoError) {
            message.bytes.clear();
            message.error = QString("The message could not be read: %1").arg(file.errorString());
        }
        return true;
    }

  private:
    QStringList m_paths;
    qsizetype m_next = 0;
    qint64 m_maximumSize;
};

class MboxSource final : public MessageSource {
  public:
    MboxSource(const QString &path, std::unique_ptr<QIODevice> device, qint64 maximumSize)
        : m_path(path), m_device(std::move(device)), m_reader(*m_device, maximumSize), m_maximumSize(maximumSize) {}

    bool next(SourceMessage &message) override {
        message = {};
        bool complete = true;
        if (m_hasFailed)
            return false;
        const bool isRead = m_reader.next(message.bytes, complete);
        m_hasFailed = m_reader.failedAt().has_value();
        if (!isRead && !m_hasFailed)
            return false;
        message.name = QString("%1#%2").arg(m_path).arg(++m_number);
        if (m_hasFailed) {
            message.bytes.clear();
            message.error = QString("\"%1\" can't be read at byte %2 and behind it: %3. The messages before were read. "
                                    "Mend the disk or take a copy of the file, and deliver what is left of it.")
                                .arg(m_path)
                                .arg(*m_reader.failedAt())
                                .arg(m_device->errorString());
            return true;
        }
        if (!complete) {
            message.bytes.clear();
            message.error = tooLong(m_maximumSize);
        }
        return true;
    }

  private:
    QString m_path;
    std::unique_ptr<QIODevice> m_device;
    MboxReader m_reader;
    qint64 m_maximumSize;
    int m_number = 0;
    bool m_hasFailed = false;
};

QStringList filesIn(const QString &path, const QStringList &patterns = {},
                    QDirIterator::IteratorFlags flags = QDirIterator::NoIteratorFlags) {
    QStringList paths;
    // What is no file is said when its turn comes.
    for (QDirIterator files(path, patterns, QDir::Files | QDir::System, flags); files.hasNext();) {
        const QString each = files.next();
        if (files.fileInfo().isFile() || isSpecial(each))
            paths += each;
    }
    // By code units: the same on every machine, whatever its language.
    std::sort(paths.begin(), paths.end());
    return paths;
}

QStringList messagesIn(const QString &path) {
    const QDir folder(path);
    if (folder.exists("cur") && folder.exists("new"))
        return filesIn(folder.filePath("new")) + filesIn(folder.filePath("cur"));
    QStringList files = filesIn(path, {"*.eml"}, QDirIterator::Subdirectories);
    if (files.isEmpty())
        throw Failure(
            failures::fileNotFound,
            QString("The folder \"%1\" is no Maildir and has no .eml files, nor have those below it.").arg(path));
    return files;
}

} // namespace

std::unique_ptr<MessageSource> MessageSource::open(const QString &path, qint64 maximumSize) {
    const QFileInfo info(path);
    if (!info.exists())
        throw Failure(failures::fileNotFound, QString("There is no file or folder \"%1\".").arg(path));
    if (info.isDir()) {
        if (!info.isReadable())
            throw Failure(failures::permissionDenied, QString("The folder \"%1\" can't be read.").arg(path));
        return std::make_unique<FileSource>(messagesIn(path), maximumSize);
    }
    if (isSpecial(path))
        throw Failure(failures::permissionDenied, QString("\"%1\" can't be delivered. %2").arg(path, noFile()));
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly))
        throw Failure(failures::permissionDenied, QString("\"%1\" can't be read: %2").arg(path, file->errorString()));
    const bool single = path.endsWith(u".eml", Qt::CaseInsensitive) || file->peek(5) != "From ";
    if (single)
        return std::make_unique<FileSource>(QStringList(path), maximumSize);
    return ofMbox(path, std::move(file), maximumSize);
}

std::unique_ptr<MessageSource> MessageSource::ofMbox(const QString &name, std::unique_ptr<QIODevice> device,
                                                     qint64 maximumSize) {
    return std::make_unique<MboxSource>(name, std::move(device), maximumSize);
}

} // namespace desk
