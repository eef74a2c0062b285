#include "platform/value/runningprocess.h"

#include <QFile>
#include <QStringList>
#include <QSysInfo>
#include <QUrl>

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace {

QString lineOf(const char *path) {
    QFile file(QString::fromLatin1(path));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.read(200)).trimmed() : QString();
}

/// The text of a link that leads to no file.
QString linkOf(const char *path) {
    char text[200];
    const ssize_t length = ::readlink(path, text, sizeof text);
    return length > 0 ? QString::fromLatin1(text, length) : QString();
}

struct Seen {
    QChar state;
    qint64 started = 0;
};

/// What the machine tells of a process; nothing where it tells nothing.
std::optional<Seen> look(qint64 number) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(number));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    // The program's name stands in brackets and may hold anything, brackets too.
    const QString text = QString::fromLatin1(file.readAll());
    const QStringList fields = text.mid(text.lastIndexOf(u')') + 2).split(u' ');
    constexpr qsizetype startedAt = 19;
    if (fields.size() <= startedAt || fields[0].isEmpty())
        return std::nullopt;
    return Seen{fields[0][0], fields[startedAt].toLongLong()};
}

QString coded(const QString &text) { return QString::fromLatin1(QUrl::toPercentEncoding(text.left(64))); }

} // namespace

const RunningProcess &RunningProcess::own() {
    static const RunningProcess process = [] {
        RunningProcess made;
        made.m_machine = lineOf("/etc/machine-id");
        made.m_boot = lineOf("/proc/sys/kernel/random/boot_id");
        made.m_namespace = linkOf("/proc/self/ns/pid");
        made.m_number = ::getpid();
        made.m_started = look(made.m_number).value_or(Seen()).started;
        made.m_host = QSysInfo::machineHostName();
        return made;
    }();
    return process;
}

QString RunningProcess::toText() const {
    return QStringList{coded(m_machine),           coded(m_boot), coded(m_namespace), QString::number(m_number),
                       QString::number(m_started), coded(m_host)}
        .join(u'/');
}

std::optional<RunningProcess> RunningProcess::fromText(const QString &text) {
    constexpr qsizetype longest = 1000;
    const QStringList fields = text.left(longest).split(u'/');
    if (fields.size() != 6)
        return std::nullopt;
    const auto plain = [&](qsizetype at) { return QUrl::fromPercentEncoding(fields[at].toLatin1()); };
    RunningProcess process;
    process.m_machine = plain(0);
    process.m_boot = plain(1);
    process.m_namespace = plain(2);
    bool isNumber = false;
    bool isTime = false;
    process.m_number = fields[3].toInt(&isNumber);
    process.m_started = fields[4].toLongLong(&isTime);
    process.m_host = plain(5);
    // A number of 0 or below would be a whole group of processes.
    if (!isNumber || !isTime || process.m_number < 1)
        return std::nullopt;
    return process;
}

RunningProcess::State RunningProcess::state() const {
    const RunningProcess &here = own();
    if (m_boot.isEmpty() || here.m_boot.isEmpty())
        return State::Unknown;
    if (m_boot != here.m_boot) {
        // Copies of a machine may share its installation's name, but hardly that and the host's too.
        const bool isSameMachine = !m_machine.isEmpty() && m_machine == here.m_machine && m_host == here.m_host;
        return isSameMachine ? State::Ended : State::Unknown;
    }
    if (m_namespace != here.m_namespace)
        return State::Unknown;
    if (::kill(static_cast<pid_t>(m_number), 0) != 0 && errno == ESRCH)
        return State::Ended;
    const std::optional<Seen> seen = look(m_number);
    // Other people's processes may be hidden.
    if (!seen)
        return State::Running;
    const bool isDead = seen->state == u'Z' || seen->state == u'X';
    return isDead || seen->started != m_started ? State::Ended : State::Running;
}
