/// One connection: frames out, frames in, and the calls that wait for their answers. The same on both ends.
#pragma once

#include "automation/descriptor.h"
#include "automation/hub.h"
#include "automation/remote.h"
#include "automation/wire.h"

#include <span>

namespace automation {

/// A growing run of bytes, filled at one end and emptied at the other.
class Buffer {
  public:
    [[nodiscard]] std::span<const char> held() const { return {m_bytes.get() + m_begin, m_end - m_begin}; }
    /// Room for at least so many bytes behind the held ones.
    [[nodiscard]] std::span<char> room(std::size_t least);
    void filled(std::size_t count) { m_end += count; }
    void emptied(std::size_t count);

  private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

/// A call that waits for its answer.
struct Pending {
    quint32 call;
    std::optional<wire::Frame> answer;
    std::optional<Failure> failure; ///< the connection's, when it ended first

    [[nodiscard]] bool isDone() const { return answer || failure; }
};

class Channel : public Source, public wire::ObjectTable, public std::enable_shared_from_this<Channel> {
  public:
    Channel(Descriptor socket, Patience patience);
    ~Channel() override;

    /// Joins the hub of the thread: from here on frames are served.
    void start();
    [[nodiscard]] bool isOpen() const { return m_socket.isOpen(); }
    /// Ends the connection from this end: waiting and later calls fail with the number.
    void close(qint32 number);

    /// Sends a request and waits for the answer, serving what comes in meanwhile. Fails as the request did, or with the
    /// connection's failure.
    wire::Frame request(wire::Frame frame);
    /// Sends a frame that needs no answer; nothing happens when the connection has ended.
    void post(const wire::Frame &frame);
    /// Puts a frame that needs no answer before the next one that is sent.
    void enqueue(const wire::Frame &frame);

    /// How often an answer of the peer has been waited for.
    [[nodiscard]] quint64 roundTrips() const { return m_roundTrips; }

    [[nodiscard]] const Patience &patience() const { return m_patience; }
    /// Grows with everything that the peer sends.
    [[nodiscard]] quint64 heard() const { return m_heard; }
    void ping();
    /// A peer that got stuck is suspended until it shows a sign of life.
    void suspend() { m_suspended = true; }
    [[nodiscard]] bool isSuspended() const { return m_suspended; }

    [[nodiscard]] bool wantsToWrite() const override { return !m_out.empty(); }
    void ready() override;
    [[nodiscard]] bool hasNext() const override;
    void serveNext() override;

  protected:
    /// Carries out a request; its answer is what `request` gives on the other end. May fail.
    virtual ValueList carryOut(const wire::Frame &frame) = 0;
    /// Carries out a frame that has no answer.
    virtual void note(const wire::Frame &frame) = 0;
    /// The connection has ended: by the peer, or by `close`.
    virtual void ended(bool byPeer) = 0;

  private:
    class Waiting;
    /// What lies at the front of the bytes that came in.
    enum class Front { Incomplete, Whole, Malformed };

    void send();
    void receive();
    void end(const Failure &failure, bool byPeer);
    void serve(wire::Frame frame);
    /// Carries out a request and answers it, where it is one that somebody waits for.
    void answer(const wire::Frame &request);
    /// Ends the connection of a peer that calls back for ever.
    void endNesting();
    void settle(wire::Frame frame);
    [[nodiscard]] Front front() const;
    /// The length of the frame at the front. REQUIRES: its length has come in and is no malformed one.
    [[nodiscard]] std::size_t frontLength() const;

    Descriptor m_socket;
    Patience m_patience;
    Buffer m_in;
    bool m_peerEnded = false;
    std::vector<char> m_out;
    std::size_t m_sent = 0;
    std::vector<Pending *> m_pending;
    quint32 m_lastCall = 0;
    quint64 m_roundTrips = 0;
    quint64 m_heard = 0;
    bool m_suspended = false;
    /// How many requests of the peer are being carried out, each inside of the one before.
    int m_depth = 0;
    /// What a call fails with once the connection has ended.
    std::optional<Failure> m_end;
};

} // namespace automation
