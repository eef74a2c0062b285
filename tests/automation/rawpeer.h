/// One end of a channel without manners: it sends any bytes, and gives the frames that come back.
#pragma once

#include "automation/descriptor.h"
#include "automation/wire.h"
#include "support/fakeobject.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>

class RawPeer {
  public:
    explicit RawPeer(automation::Descriptor socket) : m_socket(std::move(socket)) {}

    [[nodiscard]] int number() const { return m_socket.number(); }
    /// The one object it knows; each handle leads there.
    [[nodiscard]] const automation::ObjectPtr &handle() const { return m_objects.handle; }

    void send(std::span<const char> bytes) const {
        EXPECT_EQ(::send(number(), bytes.data(), bytes.size(), MSG_NOSIGNAL), std::ssize(bytes));
    }
    /// All in one go, whether or not anybody is left to take them.
    void send(const std::vector<automation::wire::Frame> &frames) {
        std::vector<char> bytes;
        for (const automation::wire::Frame &frame : frames)
            automation::wire::encode(bytes, frame, m_objects);
        ::send(number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }
    void stopSending() const { ::shutdown(number(), SHUT_WR); }

    /// The next frame that has come, if it is whole.
    std::optional<automation::wire::Frame> next() {
        takeIn();
        quint32 length = 0;
        if (m_bytes.size() < sizeof length)
            return std::nullopt;
        std::memcpy(&length, m_bytes.data(), sizeof length);
        if (m_bytes.size() < sizeof length + length)
            return std::nullopt;
        auto frame = automation::wire::decode(std::span<const char>(m_bytes).subspan(sizeof length, length), m_objects);
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(sizeof length + length));
        return frame;
    }
    bool isEnded() {
        takeIn();
        return m_ended;
    }

  private:
    struct OneObject : automation::wire::ObjectTable {
        Reference give(const automation::ObjectPtr &object) override { return {1, object->typeName()}; }
        automation::ObjectPtr take(const Reference &) override { return handle; }
        automation::ObjectPtr handle = std::make_shared<support::FakeObject>("Scripted");
    };

    void takeIn() {
        char portion[4096];
        for (;;) {
            const ssize_t count = ::recv(number(), portion, sizeof portion, MSG_DONTWAIT);
            if (count <= 0) {
                m_ended |= count == 0 || (errno != EAGAIN && errno != EINTR);
                return;
            }
            m_bytes.insert(m_bytes.end(), portion, portion + count);
        }
    }

    automation::Descriptor m_socket;
    OneObject m_objects;
    std::vector<char> m_bytes;
    bool m_ended = false;
};
