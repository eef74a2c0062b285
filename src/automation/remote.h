/// Objects of another process under the protocol: a host listens on a socket in its profile folder, and a client meets
/// the host's objects as handles that behave as the objects themselves.
///
/// Calls are synchronous. A side that waits for an answer serves what comes in meanwhile on every connection of its
/// thread, nested, so that handlers may call back and no two clients can lock each other out; it runs no timers and no
/// windows. A handler runs in the event loop or inside a waiting call. Objects cross from the host to the client, and
/// back as arguments; a client's own objects do not cross (13).
///
/// Failures beyond those of the object itself: `failures::peerGone` for every pending and later call once the peer has
/// ended, `failures::peerStuck` when the peer is there but neither answers nor shows a sign of life,
/// `failures::disconnected` for an object whose handle is no longer held, `failures::outOfStack` for every pending and
/// later call of a connection whose two ends called each other back without an end.
///
/// A `Server`, a `Client` and the handles they gave belong to the thread that made them.
#pragma once

#include "automation/object.h"

#include <chrono>

namespace automation {

/// How long a silent peer is waited for. Any frame counts as a sign of life, and a peer that is itself waiting, or in
/// its event loop, answers a ping at once; so only a peer that is stopped or busy for long runs out of it.
struct Patience {
    /// Silence before the peer is pinged.
    std::chrono::milliseconds silence{30'000};
    /// Silence after the ping before the call is given up.
    std::chrono::milliseconds answer{10'000};
};

/// Has a step run whenever a call of this thread is about to wait for its answer, and again at least every quarter of a
/// second. It may throw to give the call up, which the peer may have carried out or still carry out; the answer is
/// dropped when it comes. Empty for none.
void whileWaiting(std::function<void()> step);

/// The number of a client on its server, never 0 and never used again while the server lives.
using ClientNumber = quint32;

/// The client whose call is being served on this thread, the innermost when nested; 0 outside of any. A host marks with
/// it what must go when the client goes.
ClientNumber currentClient();

/// To be called by a host before it runs an event loop inside a call that it serves: what came in together with the
/// call is served there, too, and does not wait for the call's end.
void serveInNestedLoop();

/// The host's end.
///
/// A client that ends takes its handles and subscriptions with it and nothing else. A client that got stuck in a
/// handler is left out of all events until it shows a sign of life again.
class Server {
  public:
    /// Listens at the socket path. `root` is asked for the root object for each client. A socket left behind by a host
    /// that has ended is replaced; fails with 70 when another one is running there, 76 when the folder is missing.
    Server(std::function<ObjectPtr()> root, const QString &socketPath, Patience patience = {});
    /// REQUIRES: not inside a call that it serves.
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /// Called from the event loop, once for each client that has gone, after its handles and subscriptions ended.
    void onClientGone(std::function<void(ClientNumber)> handler);

    [[nodiscard]] int clientCount() const;
    /// Grows with everything that any client sends: a client that is at work shows it here.
    [[nodiscard]] quint64 heard() const;

  private:
    class Implementation;
    std::shared_ptr<Implementation> m_implementation;
};

/// A program's end.
class Client {
  public:
    /// Connects to the host that listens at the socket path. `peerGone` is called once, from the event loop, when the
    /// host has ended; not when the client itself is dropped. Fails with 429 when no host is running there.
    static std::unique_ptr<Client> connect(const QString &socketPath, std::function<void()> peerGone = {},
                                           Patience patience = {});
    /// Ends the connection. Handles that are still held fail with `failures::disconnected`.
    ~Client();
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;

    [[nodiscard]] const ObjectPtr &root() const;
    [[nodiscard]] bool isConnected() const;
    /// How often it has waited for an answer of the host.
    [[nodiscard]] quint64 roundTrips() const;

  private:
    class Implementation;
    explicit Client(std::shared_ptr<Implementation> implementation);

    std::shared_ptr<Implementation> m_implementation;
};

} // namespace automation
