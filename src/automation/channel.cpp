#include "automation/channel.h"

#include <QScopeGuard>

#include <cerrno>
#include <cstring>
#include <sys/socket.h>

namespace automation {

using wire::Frame;
using wire::FrameKind;

namespace {

constexpr std::size_t lengthSize = sizeof(quint32);
/// What is taken in at once; a usual frame is far smaller.
constexpr std::size_t portion = 64U << 10U;
/// Buffers above this are given back once they are empty.
constexpr std::size_t mostIdle = 1U << 20U;
/// A peer that reads nothing and asks for this much has lost its way.
constexpr std::size_t mostUnsent = 4 * std::size_t{wire::largestBody};
/// Calls of one peer nested deeper end its connection, and calls of all peers together are refused: handlers that call
/// each other for ever must end before the stack does.
constexpr int deepest = 100;
constexpr int deepestOfAll = 250;

thread_local int depthOfAll = 0;

} // namespace

std::span<char> Buffer::room(std::size_t least) {
    if (m_size - m_end < least) {
        const std::size_t held = m_end - m_begin;
        const std::size_t size = held + least <= m_size ? m_size : std::max(2 * m_size, held + least);
        auto bytes = size == m_size ? nullptr : std::make_unique_for_overwrite<char[]>(size);
        char *target = bytes ? bytes.get() : m_bytes.get();
        if (held > 0)
            std::memmove(target, m_bytes.get() + m_begin, held);
        if (bytes)
            m_bytes = std::move(bytes);
        m_size = size;
        m_begin = 0;
        m_end = held;
    }
    return {m_bytes.get() + m_end, m_size - m_end};
}

void Buffer::emptied(std::size_t count) {
    m_begin += count;
    if (m_begin < m_end)
        return;
    m_begin = m_end = 0;
    if (m_size > mostIdle) {
        m_bytes.reset();
        m_size = 0;
    }
}

/// A pending call, known to its channel for as long as it is waited for.
class Channel::Waiting {
  public:
    explicit Waiting(Channel &channel) : m_channel(channel.shared_from_this()), pending{++channel.m_lastCall, {}, {}} {
        m_channel->m_pending.push_back(&pending);
    }
    ~Waiting() { std::erase(m_channel->m_pending, &pending); }
    Waiting(const Waiting &) = delete;
    Waiting &operator=(const Waiting &) = delete;

  private:
    std::shared_ptr<Channel> m_channel;

  public:
    Pending pending;
};

Channel::Channel(Descriptor socket, Patience patience)
    : Source(socket.number()), m_socket(std::move(socket)), m_patience(patience) {}

Channel::~Channel() = default;

void Channel::start() { Hub::ofThisThread().add(shared_from_this()); }

void Channel::close(qint32 number) { end(Failure(number), false); }

void Channel::end(const Failure &failure, bool byPeer) {
    if (!isOpen())
        return;
    const std::shared_ptr<Channel> alive = shared_from_this();
    m_end = failure;
    Hub::ofThisThread().remove(*this);
    m_socket.close();
    m_out.clear();
    m_sent = 0;
    for (Pending *pending : m_pending)
        if (!pending->isDone())
            pending->failure = failure;
    ended(byPeer);
}

Frame Channel::request(Frame frame) {
    if (!isOpen())
        throw Failure(m_end.value_or(Failure(failures::disconnected)));
    Waiting waiting(*this);
    Pending &pending = waiting.pending;
    frame.call = pending.call;
    wire::encode(m_out, frame, *this);
    send();
    ++m_roundTrips;
    Hub::ofThisThread().await(*this, pending);
    if (pending.failure)
        throw Failure(*pending.failure);
    if (pending.answer->kind == FrameKind::Refusal)
        throw Failure(pending.answer->number, pending.answer->text);
    return std::move(*pending.answer);
}

void Channel::post(const Frame &frame) {
    enqueue(frame);
    send();
}

void Channel::enqueue(const Frame &frame) {
    if (isOpen())
        wire::encode(m_out, frame, *this);
}

void Channel::ping() { post({.kind = FrameKind::Ping}); }

void Channel::send() {
    const bool wasWaiting = m_sent > 0;
    while (m_sent < m_out.size()) {
        const ssize_t count = ::send(descriptor(), m_out.data() + m_sent, m_out.size() - m_sent, MSG_NOSIGNAL);
        if (count >= 0) {
            m_sent += static_cast<std::size_t>(count);
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            break;
        } else if (errno != EINTR) {
            // Nobody reads any more; what the peer sent before its end is still to be taken in, and then tells so.
            m_sent = m_out.size();
        }
    }
    if (m_out.size() - m_sent > mostUnsent) {
        end(Failure(failures::peerGone), true);
        return;
    }
    if (m_sent == m_out.size()) {
        m_out.clear();
        m_sent = 0;
        if (m_out.capacity() > mostIdle)
            m_out.shrink_to_fit();
    }
    if (wasWaiting || wantsToWrite())
        Hub::ofThisThread().updateWriting(*this);
}

void Channel::ready() {
    if (!isOpen())
        return;
    if (wantsToWrite())
        send();
    receive();
}

void Channel::receive() {
    std::size_t wanted = portion;
    if (front() == Front::Incomplete && m_in.held().size() >= lengthSize)
        wanted = std::max(wanted, lengthSize + frontLength() - m_in.held().size());
    while (isOpen()) {
        const std::span<char> room = m_in.room(wanted);
        const ssize_t count = ::recv(descriptor(), room.data(), room.size(), 0);
        if (count > 0) {
            m_in.filled(static_cast<std::size_t>(count));
            ++m_heard;
            m_suspended = false;
        } else if (count < 0 && errno == EINTR) {
            continue;
        } else if (count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) {
            m_peerEnded = true;
        }
        return;
    }
}

std::size_t Channel::frontLength() const { return wire::bodyLength(m_in.held().first<lengthSize>()).value_or(0); }

Channel::Front Channel::front() const {
    const std::span<const char> held = m_in.held();
    if (held.size() < lengthSize)
        return Front::Incomplete;
    const std::optional<quint32> length = wire::bodyLength(held.first<lengthSize>());
    if (!length)
        return Front::Malformed;
    return held.size() - lengthSize >= *length ? Front::Whole : Front::Incomplete;
}

bool Channel::hasNext() const { return isOpen() && (m_peerEnded || front() != Front::Incomplete); }

void Channel::serveNext() {
    if (front() != Front::Whole) {
        end(Failure(failures::peerGone), true);
        return;
    }
    const std::size_t length = frontLength();
    std::optional<Frame> frame = wire::decode(m_in.held().subspan(lengthSize, length), *this);
    m_in.emptied(lengthSize + length);
    if (frame)
        serve(std::move(*frame));
    else
        end(Failure(failures::peerGone), true);
}

void Channel::serve(Frame frame) {
    switch (frame.kind) {
    case FrameKind::Hello:
    case FrameKind::Get:
    case FrameKind::Put:
    case FrameKind::Call:
    case FrameKind::Connect:
    case FrameKind::Event:
    case FrameKind::PutThrough:
    case FrameKind::TryPut:
    case FrameKind::Ask:
        answer(frame);
        break;
    case FrameKind::Disconnect:
    case FrameKind::Release:
        note(frame);
        break;
    case FrameKind::Ping:
        post({.kind = FrameKind::Pong});
        break;
    case FrameKind::Pong:
        break;
    case FrameKind::Farewell:
        end(Failure(frame.number, frame.text), true);
        break;
    case FrameKind::Answer:
    case FrameKind::Refusal:
        settle(std::move(frame));
        break;
    }
}

void Channel::answer(const Frame &request) {
    const bool isAwaited = request.kind != FrameKind::TryPut;
    const auto refuse = [&](const Failure &failure) {
        if (!isAwaited)
            return;
        post({.kind = FrameKind::Refusal,
              .call = request.call,
              .number = failure.number(),
              .text = failure.description()});
    };
    if (m_depth == deepest) {
        endNesting();
        return;
    }
    const auto shallower = qScopeGuard([self = shared_from_this()] {
        --self->m_depth;
        --depthOfAll;
    });
    ++m_depth;
    ++depthOfAll;
    try {
        if (depthOfAll > deepestOfAll)
            throw Failure(failures::callRejected);
        if (request.staleObject)
            throw Failure(failures::disconnected);
        const ValueList result = carryOut(request);
        if (isAwaited)
            post({.kind = FrameKind::Answer, .call = request.call, .values = result});
    } catch (const Failure &failure) {
        refuse(failure);
    } catch (...) {
        // It is on its way to whoever waits in this process; the peer must not wait for it.
        refuse(Failure(failures::automationError));
        throw;
    }
}

void Channel::endNesting() {
    const Failure failure(failures::outOfStack,
                          QStringLiteral("The program and the host called each other back without an end, so their "
                                         "connection was ended. Start the program again."));
    post({.kind = FrameKind::Farewell, .number = failure.number(), .text = failure.description()});
    end(failure, true);
}

void Channel::settle(Frame frame) {
    // The answer to a call that was given up finds nobody.
    for (Pending *pending : m_pending) {
        if (pending->call == frame.call && !pending->isDone()) {
            pending->answer.emplace(std::move(frame));
            return;
        }
    }
}

} // namespace automation
