#include "desk/mail/source.h"

#include "desk/mail/mbox.h"
#include "platform/value/failure.h"
#include "platform/value/pathbytes.h"

#include <QFile>

#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace desk {
namespace {

QString tooLong(qint64 maximumSize) {
    return QString("The message is longer than %1 bytes and was passed over.").arg(maximumSize);
}

/// What stands at a path, where a link there leads.
std::optional<mode_t> kindOf(const QString &path) {
    struct stat found {};
    if (::stat(bytesOfPath(path).constData(), &found) != 0)
        return std::nullopt;
    return found.st_mode & S_IFMT;
}

/// Whether a device, a pipe or a socket stands there, of which nobody knows when its bytes come and end.
bool isSpecial(const QString &path) {
    const std::optional<mode_t> kind = kindOf(path);
    return kind && *kind != S_IFREG && *kind != S_IFDIR;
}

/// Opens a file whose name may be any bytes; otherwise gives the reason in the machine's words.
QString openError(QFile &file, const QString &path) {
    const int opened = ::open(bytesOfPath(path).constData(), O_RDONLY | O_CLOEXEC);
    if (opened < 0)
        return qt_error_string(errno);
    if (file.open(opened, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return {};
    ::close(opened);
    return file.errorString();
}

QString noFile() {
    return QStringLiteral("It is a pipe, a socket or a device and no file; save its messages to a file first.");
}

QString noFolder() { return QStringLiteral("The folder can't be read; check your rights to it."); }

/// The files of a list, one message each. A folder in the list is one that can't be read.
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
        if (kindOf(message.name) == S_IFDIR) {
            message.error = noFolder();
            return true;
        }
        QFile file;
        if (const QString problem = openError(file, message.name); !problem.isEmpty()) {
            message.error = QString("The message could not be read: %1").arg(problem);
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

namespace fs = std::filesystem;

/// The files right in a folder and, where asked for, in those below it, and the folders that can't be looked into. What
/// begins with a dot is hidden and left out, and links to folders are not followed.
QStringList filesIn(const QString &path, const QString &ending, bool isDeep) {
    QStringList paths;
    std::error_code problem;
    fs::directory_iterator entries(bytesOfPath(path).toStdString(), problem);
    for (const fs::directory_iterator end; !problem && entries != end; entries.increment(problem)) {
        const std::string name = entries->path().filename().string();
        if (name.starts_with('.'))
            continue;
        const QString above = path.endsWith(u'/') ? path : path + u'/';
        const QString each = above + pathFromBytes(QByteArray::fromStdString(name));
        std::error_code unknown;
        const bool isLink = entries->is_symlink(unknown);
        const std::optional<mode_t> kind = kindOf(each);
        if (kind == S_IFDIR && isDeep && !isLink)
            paths += filesIn(each, ending, isDeep);
        // What is no file is said when its turn comes, and so is one that only its folder knows.
        else if (kind != S_IFDIR && (kind || !isLink) && each.endsWith(ending, Qt::CaseInsensitive))
            paths += each;
    }
    if (problem)
        paths += path;
    return paths;
}

/// By code units: the same on every machine, whatever its language.
QStringList sorted(QStringList paths) {
    std::sort(paths.begin(), paths.end());
    return paths;
}

QStringList messagesIn(const QString &path) {
    const QString fresh = path + QStringLiteral("/new");
    const QString seen = path + QStringLiteral("/cur");
    if (kindOf(fresh) && kindOf(seen))
        return sorted(filesIn(fresh, {}, false)) + sorted(filesIn(seen, {}, false));
    QStringList files = sorted(filesIn(path, QStringLiteral(".eml"), true));
    if (files.isEmpty())
        throw Failure(
            failures::fileNotFound,
            QString("The folder \"%1\" is no Maildir and has no .eml files, nor have those below it.").arg(path));
    return files;
}

} // namespace

std::unique_ptr<MessageSource> MessageSource::open(const QString &path, qint64 maximumSize) {
    const std::optional<mode_t> kind = kindOf(path);
    if (!kind)
        throw Failure(failures::fileNotFound, QString("There is no file or folder \"%1\".").arg(path));
    if (kind == S_IFDIR) {
        if (::access(bytesOfPath(path).constData(), R_OK | X_OK) != 0)
            throw Failure(failures::permissionDenied, QString("The folder \"%1\" can't be read.").arg(path));
        return std::make_unique<FileSource>(messagesIn(path), maximumSize);
    }
    if (isSpecial(path))
        throw Failure(failures::permissionDenied, QString("\"%1\" can't be delivered. %2").arg(path, noFile()));
    auto file = std::make_unique<QFile>();
    if (const QString problem = openError(*file, path); !problem.isEmpty())
        throw Failure(failures::permissionDenied, QString("\"%1\" can't be read: %2").arg(path, problem));
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
