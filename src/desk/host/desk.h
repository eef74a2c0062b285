/// The host in one object: a profile opened, its object model, and what runs beside it.
#pragma once

#include "automation/remote.h"
#include "desk/content/profile.h"

#include <QTimer>

namespace desk {

class Session;

/// A desk in this process. Clients of this process use `application()`; those of other processes reach it once it
/// listens. While the event loop runs, it notices what other processes change and sends what is submitted.
class Desk {
  public:
    explicit Desk(const DeskOptions &options);
    /// Tells the clients that the host quits, and closes the windows, where `quit` has not.
    ~Desk();
    Desk(const Desk &) = delete;
    Desk &operator=(const Desk &) = delete;

    [[nodiscard]] automation::ObjectPtr application() const;
    [[nodiscard]] Session &session() const { return *m_session; }

    /// Lets programs connect, at the profile's socket. Fails with 70 when another desk runs on the profile.
    void listen();

    /// Ends the host in the orderly way: tells the clients, serves those of other processes until they have finished
    /// what they have in hand and gone, and closes the windows. A client that stays is waited for while it is at work,
    /// ten seconds longer, and no more than a minute in all.
    /// \param isUrgent  asked meanwhile; true waits for nobody any more.
    void quit(const std::function<bool()> &isUrgent = {});

    /// Told of what goes wrong beside the clients' calls, such as mail that can't leave; once for each problem.
    std::function<void(const QString &)> onProblem;

    /// Looks for what other processes have done, and sends what is submitted; what the timers do.
    void lookAround();

  private:
    void keep(const std::function<void()> &work);
    void waitForClients(const std::function<bool()> &isUrgent);

    std::shared_ptr<Session> m_session;
    std::unique_ptr<automation::Server> m_server;
    QTimer m_pollTimer;
    QTimer m_sendTimer;
    QString m_problem;
    bool m_hasQuit = false;
};

} // namespace desk
