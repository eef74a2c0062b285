/// File descriptors, and the socket file at which a host is met.
#pragma once

#include <QString>

#include <utility>

namespace automation {

/// Owns a file descriptor.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        if (this != &other) {
            close();
            m_number = std::exchange(other.m_number, -1);
        }
        return *this;
    }

    [[nodiscard]] int number() const { return m_number; }
    [[nodiscard]] bool isOpen() const { return m_number >= 0; }
    void close();

  private:
    int m_number = -1;
};

/// The place where one host listens: its socket file, and beside it a lock file that the host holds while it lives, so
/// that of two hosts that start at once only one replaces a socket that was left behind.
class ListeningPlace {
  public:
    /// Fails with 70 when another host is there, 76 when the folder can't be written.
    explicit ListeningPlace(const QString &socketPath);
    ~ListeningPlace();
    ListeningPlace(const ListeningPlace &) = delete;
    ListeningPlace &operator=(const ListeningPlace &) = delete;

    [[nodiscard]] int number() const { return m_socket.number(); }
    /// The next waiting client, or none; one of another user is turned away. Where this process is out of file handles
    /// all that wait are turned away at once: nothing would tell when to take them in.
    [[nodiscard]] Descriptor accept();

  private:
    QString m_path;
    Descriptor m_lock;
    Descriptor m_socket;
    /// Given up to turn a client away where there is no other handle left.
    Descriptor m_reserve;
};

/// Connects to the host that listens at the path. Fails with 429 when there is none, or one of another user.
Descriptor connectToHost(const QString &socketPath);

} // namespace automation
