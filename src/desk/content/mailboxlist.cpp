#include "desk/content/mailboxlist.h"

#include "platform/scripting/replacement.h"
#include "platform/value/failure.h"
#include "platform/value/filelock.h"

#include <QFile>

#include <chrono>

#include <sys/stat.h>

namespace desk {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 10s;
constexpr qint64 longestList = qint64{1024} * 1024;

bool isPath(const QString &line) {
    return line.startsWith(u'/') && !line.contains(QChar::ReplacementCharacter) && line.isValidUtf16();
}

} // namespace

MailboxList::MailboxList(const Profile &profile) : m_path(profile.folder() + QStringLiteral("/mailboxes.txt")) {}

QStringList MailboxList::files() const {
    QFile file(m_path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(failures::permissionDenied,
                      QStringLiteral("The list of mailboxes %1 can't be read: %2").arg(m_path, file.errorString()));
    const QStringList lines = QString::fromUtf8(file.read(longestList)).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (!isPath(line))
            throw Failure(
                failures::unspecified,
                QStringLiteral("The file %1 is no list of mailboxes (one full path a line). Correct or remove "
                               "it; \"mailbox add\" makes it anew.")
                    .arg(m_path));
    }
    return lines;
}

void MailboxList::change(const std::function<void(QStringList &)> &step) const {
    const auto lock = FileLock::take(m_path + QStringLiteral(".lock"), patience);
    if (!lock)
        throw Failure(failures::permissionDenied,
                      QStringLiteral("Another program is changing the list of mailboxes %1. Try again.").arg(m_path));
    QStringList lines = files();
    const QStringList before = lines;
    step(lines);
    if (lines != before)
        scripting::Replacement(m_path).commit((lines.join(u'\n') + u'\n').toUtf8());
}

void MailboxList::add(const QString &file) const {
    if (!isPath(file) || file.contains(u'\n'))
        throw Failure(failures::invalidCall,
                      QStringLiteral("The path \"%1\" can't be listed: it must be a full path in UTF-8 without line "
                                     "ends. Rename the file or a folder above it.")
                          .arg(file));
    change([&](QStringList &lines) {
        if (!lines.contains(file))
            lines.append(file);
    });
}

void MailboxList::remove(const QString &file) const {
    change([&](QStringList &lines) { lines.removeAll(file); });
}

QString MailboxList::mark() const {
    struct stat found {};
    if (::stat(QFile::encodeName(m_path).constData(), &found) != 0)
        return {};
    return QStringLiteral("%1 %2 %3.%4")
        .arg(found.st_ino)
        .arg(found.st_size)
        .arg(found.st_mtim.tv_sec)
        .arg(found.st_mtim.tv_nsec);
}

} // namespace desk
