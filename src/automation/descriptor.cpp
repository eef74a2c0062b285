#include "automation/descriptor.h"

#include "platform/value/failure.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace automation {
namespace {

QString systemReason() { return QString::fromLocal8Bit(strerror(errno)); }

[[noreturn]] void cannotListen(const QString &path) {
    throw Failure(
        failures::pathNotFound,
        QStringLiteral("The socket %1 could not be made (%2). Check that its folder exists and can be written.")
            .arg(path, systemReason()));
}

[[noreturn]] void alreadyRunning(const QString &path) {
    throw Failure(failures::permissionDenied,
                  QStringLiteral("Another host is already running at %1. Use that one, or end it first.").arg(path));
}

/// A socket's address, of any length of path: what does not fit into the address is reached through its folder.
class Address {
  public:
    /// Leaves the reason in errno when there is no such folder.
    explicit Address(const QString &path) {
        m_address.sun_family = AF_UNIX;
        QByteArray name = QFile::encodeName(path);
        if (name.size() >= fits) {
            const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
            m_folder = Descriptor(::open(folder.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
            if (!m_folder.isOpen())
                return;
            name = "/proc/self/fd/" + QByteArray::number(m_folder.number()) + '/' +
                   QFile::encodeName(QFileInfo(path).fileName());
        }
        if (name.size() < fits)
            std::memcpy(m_address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
        else
            errno = ENAMETOOLONG;
    }

    [[nodiscard]] bool isGood() const { return m_address.sun_path[0] != '\0'; }
    [[nodiscard]] const sockaddr *data() const { return reinterpret_cast<const sockaddr *>(&m_address); }
    [[nodiscard]] static socklen_t size() { return sizeof(sockaddr_un); }

  private:
    static constexpr qsizetype fits = sizeof(sockaddr_un::sun_path);

    sockaddr_un m_address{};
    Descriptor m_folder;
};

Descriptor makeSocket() { return Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)); }

bool connectSocket(const Descriptor &socket, const QString &path) {
    const Address address(path);
    return address.isGood() && ::connect(socket.number(), address.data(), Address::size()) == 0;
}

bool isOwnUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

} // namespace

void Descriptor::close() {
    if (m_number >= 0)
        ::close(std::exchange(m_number, -1));
}

ListeningPlace::ListeningPlace(const QString &socketPath) : m_path(socketPath) {
    const QByteArray file = QFile::encodeName(m_path);
    m_lock = Descriptor(::open((file + ".lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!m_lock.isOpen())
        cannotListen(m_path);
    if (::flock(m_lock.number(), LOCK_EX | LOCK_NB) != 0)
        alreadyRunning(m_path);
    // Somebody may have removed the lock file of a host that still runs: then its socket answers, or has no room left.
    if (connectSocket(makeSocket(), m_path) || errno == EAGAIN)
        alreadyRunning(m_path);
    ::unlink(file.constData());

    Descriptor socket = makeSocket();
    const Address address(m_path);
    // Nobody can connect before `listen`, so the permissions are in place in time.
    if (!socket.isOpen() || !address.isGood() || ::bind(socket.number(), address.data(), Address::size()) != 0 ||
        ::chmod(file.constData(), S_IRUSR | S_IWUSR) != 0 || ::listen(socket.number(), SOMAXCONN) != 0)
        cannotListen(m_path);
    m_socket = std::move(socket);
    m_reserve = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

ListeningPlace::~ListeningPlace() {
    // The lock file stays: removing it would let two hosts hold a lock on two files of the same name.
    if (m_socket.isOpen())
        ::unlink(QFile::encodeName(m_path).constData());
}

Descriptor ListeningPlace::accept() {
    for (;;) {
        if (!m_reserve.isOpen())
            m_reserve = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        Descriptor client(::accept4(m_socket.number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!client.isOpen() && (errno == EMFILE || errno == ENFILE) && m_reserve.isOpen()) {
            m_reserve.close();
            // That no handle is left is said also where nobody waits.
            const bool hadOne = Descriptor(::accept4(m_socket.number(), nullptr, nullptr, SOCK_CLOEXEC)).isOpen();
            m_reserve = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
            if (!hadOne)
                return {};
            continue;
        }
        if (!client.isOpen() && (errno == EINTR || errno == ECONNABORTED))
            continue;
        if (!client.isOpen() || isOwnUser(client.number()))
            return client;
    }
}

Descriptor connectToHost(const QString &socketPath) {
    Descriptor socket = makeSocket();
    if (!connectSocket(socket, socketPath) || !isOwnUser(socket.number()))
        throw Failure(failures::cannotCreateObject,
                      QStringLiteral("No host is running at %1. Start it and try again.").arg(socketPath));
    return socket;
}

} // namespace automation
