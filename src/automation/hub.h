/// Everything that one thread listens to: it serves what comes in while a call waits, and in the event loop.
#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <vector>

#include <poll.h>

namespace automation {

class Channel;
struct Pending;

/// Something with a descriptor that a hub watches.
class Source {
  public:
    explicit Source(int descriptor) : m_descriptor(descriptor) {}
    virtual ~Source() = default;
    Source(const Source &) = delete;
    Source &operator=(const Source &) = delete;

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    /// Whether the hub should say when the descriptor takes bytes again.
    [[nodiscard]] virtual bool wantsToWrite() const { return false; }
    /// The descriptor is ready: takes in what there is and sends what can be sent. Serves nothing.
    virtual void ready() = 0;
    /// Whether something that was taken in waits to be served.
    [[nodiscard]] virtual bool hasNext() const = 0;
    /// Serves the next thing. REQUIRES: `hasNext`.
    virtual void serveNext() = 0;

  private:
    int m_descriptor;
};

/// The sources of a thread.
///
/// Invariant: serving happens in `serve` only, and whoever calls it expects sources to come and go meanwhile.
class Hub : public QObject {
  public:
    static Hub &ofThisThread();

    /// Watches a source, in the event loop too where the thread has one. It must be removed before it ends.
    void add(const std::shared_ptr<Source> &source);
    void remove(const Source &source);
    /// To be called when `wantsToWrite` has changed.
    void updateWriting(const Source &source);

    /// Serves all sources until the pending call has been answered. Fails with `failures::peerStuck` when the channel
    /// stays silent beyond its patience.
    void await(Channel &channel, const Pending &pending);

    /// See `automation::whileWaiting`.
    void whileWaiting(std::function<void()> step) { m_whileWaiting = std::move(step); }

    /// Has the event loop serve what has been taken in already, for no descriptor will tell of it.
    void serveRestInLoop();

    /// Runs a step from the event loop. Never, where the thread has none.
    void later(std::function<void()> step);

  private:
    struct Watched {
        std::shared_ptr<Source> source;
        std::unique_ptr<QSocketNotifier> readable;
        std::unique_ptr<QSocketNotifier> writable;
    };

    Hub() = default;
    void watch(Watched &watched);
    /// Serves what has been taken in until nothing is left or the call, where there is one, has been answered.
    void serve(const Pending *until);
    [[nodiscard]] std::shared_ptr<Source> nextToServe() const;
    /// Waits for at most so long until a descriptor is ready, and takes in what there is.
    void takeIn(int milliseconds);
    void readyInLoop(const std::weak_ptr<Source> &source);

    std::vector<Watched> m_watched;
    std::vector<pollfd> m_polled;
    bool m_restIsPosted = false;
    std::function<void()> m_whileWaiting;
};

} // namespace automation
