#include "automation/hub.h"

#include "automation/channel.h"

#include <QAbstractEventDispatcher>
#include <QScopeGuard>

#include <chrono>

namespace automation {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {
/// A signal that comes right before the wait does not end it.
constexpr milliseconds betweenLooks{250};
} // namespace

Hub &Hub::ofThisThread() {
    static thread_local Hub hub;
    return hub;
}

void Hub::add(const std::shared_ptr<Source> &source) {
    m_watched.push_back({source, nullptr, nullptr});
    // A thread without an event loop listens only while it waits.
    if (QAbstractEventDispatcher::instance())
        watch(m_watched.back());
}

void Hub::watch(Watched &watched) {
    const std::weak_ptr<Source> source = watched.source;
    const auto notifier = [&](QSocketNotifier::Type type) {
        auto made = std::make_unique<QSocketNotifier>(watched.source->descriptor(), type);
        QObject::connect(made.get(), &QSocketNotifier::activated, this, [this, source] { readyInLoop(source); });
        return made;
    };
    watched.readable = notifier(QSocketNotifier::Read);
    watched.writable = notifier(QSocketNotifier::Write);
    watched.writable->setEnabled(watched.source->wantsToWrite());
}

void Hub::remove(const Source &source) {
    std::erase_if(m_watched, [&](const Watched &watched) { return watched.source.get() == &source; });
}

void Hub::updateWriting(const Source &source) {
    for (Watched &watched : m_watched)
        if (watched.source.get() == &source && watched.writable)
            watched.writable->setEnabled(source.wantsToWrite());
}

void Hub::await(Channel &channel, const Pending &pending) {
    // What came in behind the answer waits for the next turn.
    const auto tellOfRest = qScopeGuard([this] { serveRestInLoop(); });
    const Patience &patience = channel.patience();
    bool pinged = channel.isSuspended();
    if (pinged)
        channel.ping();
    quint64 heard = channel.heard();
    // Only waiting counts as silence: serving others may take long, and the answer may lie unread meanwhile.
    steady_clock::duration silence{};
    for (;;) {
        serve(&pending);
        if (pending.isDone())
            return;
        const milliseconds limit = pinged ? patience.answer : patience.silence;
        auto left = std::chrono::ceil<milliseconds>(limit - silence);
        if (m_whileWaiting) {
            m_whileWaiting();
            left = std::min(left, betweenLooks);
        }
        const auto start = steady_clock::now();
        takeIn(static_cast<int>(std::max(left, milliseconds(0)).count()));
        silence += steady_clock::now() - start;
        if (channel.heard() != heard) {
            heard = channel.heard();
            silence = {};
            pinged = false;
        } else if (silence >= limit) {
            if (pinged) {
                channel.suspend();
                throw Failure(failures::peerStuck);
            }
            channel.ping();
            silence = {};
            pinged = true;
        }
    }
}

void Hub::serve(const Pending *until) {
    while (!until || !until->isDone()) {
        const std::shared_ptr<Source> source = nextToServe();
        if (!source)
            return;
        source->serveNext();
    }
}

std::shared_ptr<Source> Hub::nextToServe() const {
    for (const Watched &watched : m_watched)
        if (watched.source->hasNext())
            return watched.source;
    return nullptr;
}

void Hub::takeIn(int timeout) {
    m_polled.clear();
    for (const Watched &watched : m_watched) {
        const short events = watched.source->wantsToWrite() ? POLLIN | POLLOUT : POLLIN;
        m_polled.push_back({watched.source->descriptor(), events, 0});
    }
    if (::poll(m_polled.data(), m_polled.size(), timeout) <= 0)
        return;
    // Taking in may add sources at the end, and nothing else.
    for (std::size_t i = 0; i < m_polled.size(); ++i)
        if (m_polled[i].revents != 0)
            std::shared_ptr<Source>(m_watched[i].source)->ready();
}

void Hub::readyInLoop(const std::weak_ptr<Source> &source) {
    if (const std::shared_ptr<Source> ready = source.lock())
        ready->ready();
    serve(nullptr);
}

void Hub::serveRestInLoop() {
    if (!nextToServe() || m_restIsPosted || !QAbstractEventDispatcher::instance())
        return;
    m_restIsPosted = true;
    later([this] {
        m_restIsPosted = false;
        serve(nullptr);
    });
}

void whileWaiting(std::function<void()> step) { Hub::ofThisThread().whileWaiting(std::move(step)); }

void Hub::later(std::function<void()> step) { QMetaObject::invokeMethod(this, std::move(step), Qt::QueuedConnection); }

} // namespace automation
