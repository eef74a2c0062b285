#include "desk/host/desk.h"

#include "desk/content/othermailboxes.h"
#include "desk/objects/application.h"
#include "desk/objects/itemwatch.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"
#include "desk/transport/transport.h"
#include "desk/windows/windows.h"

#include <QDeadlineTimer>
#include <QEventLoop>

#include <chrono>

namespace desk {
namespace {

using namespace std::chrono_literals;

constexpr auto pollInterval = 100ms;
constexpr auto sendInterval = 1000ms;

/// How long an end waits for the clients, in all and after the last sign of their work.
constexpr auto mostWaiting = 60s;
constexpr auto quietWaiting = 10s;
constexpr auto lookInterval = 10ms;

} // namespace

Desk::Desk(const DeskOptions &options) : m_session(Session::open(Profile(options))) {
    m_session->setWindowFactory(makeWindowFactory());
    QObject::connect(&m_pollTimer, &QTimer::timeout, &m_pollTimer,
                     [this] { keep([this] { m_session->watch().poll(); }); });
    // What can't be sent stays in the Outbox and is tried again.
    QObject::connect(&m_sendTimer, &QTimer::timeout, &m_sendTimer,
                     [this] { keep([this] { m_session->transport().deliverNow(); }); });
    QObject::connect(&m_sendTimer, &QTimer::timeout, &m_sendTimer,
                     [this] { keep([this] { m_session->otherMailboxes().look(); }); });
    m_pollTimer.start(pollInterval);
    m_sendTimer.start(sendInterval);
}

Desk::~Desk() {
    quit([] { return true; });
    m_server.reset();
}

void Desk::quit(const std::function<bool()> &isUrgent) {
    if (std::exchange(m_hasQuit, true))
        return;
    m_pollTimer.stop();
    m_sendTimer.stop();
    m_session->isEnding = [] { return true; };
    Q_EMIT m_session->application()->ApplicationEvents::Quit();
    waitForClients(isUrgent);
    m_session->windows().closeAll();
}

void Desk::waitForClients(const std::function<bool()> &isUrgent) {
    if (!m_server || (isUrgent && isUrgent()))
        return;
    const QDeadlineTimer end(mostWaiting);
    QDeadlineTimer quiet(quietWaiting);
    quint64 heard = m_server->heard();
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (heard != m_server->heard()) {
            heard = m_server->heard();
            quiet.setRemainingTime(quietWaiting);
        }
        if (m_server->clientCount() == 0 || end.hasExpired() || quiet.hasExpired() || (isUrgent && isUrgent()))
            loop.quit();
    });
    look.start(lookInterval);
    if (m_server->clientCount() > 0)
        loop.exec();
}

automation::ObjectPtr Desk::application() const { return automation::wrap(m_session->application()); }

void Desk::listen() {
    m_server = std::make_unique<automation::Server>([this] { return application(); }, m_session->profile().socket());
    m_server->onClientGone([this](automation::ClientNumber client) { m_session->windows().clientGone(client); });
}

/// REQUIRES: called from a timer, through which no failure may pass.
void Desk::keep(const std::function<void()> &work) {
    const std::optional<Failure> failure = Attempt(work);
    if (!failure || failure->description() == m_problem)
        return;
    m_problem = failure->description();
    if (onProblem)
        onProblem(m_problem);
}

void Desk::lookAround() {
    m_session->watch().poll();
    m_session->transport().deliverNow();
}

} // namespace desk
