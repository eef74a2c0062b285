// What one member costs: in one process, and across the socket to a host that stands in its event loop.

#include "automation/sample.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace automation;

namespace {

/// A host in a process of its own, and the connection to it.
class HostProcess {
  public:
    HostProcess() {
        m_child = ::fork();
        if (m_child == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            runHost();
        }
        while (!m_client) {
            try {
                m_client = Client::connect(socketPath());
            } catch (const Failure &) {
                ::usleep(1000);
            }
        }
    }
    ~HostProcess() {
        m_client.reset();
        ::kill(m_child, SIGKILL);
        ::waitpid(m_child, nullptr, 0);
    }
    HostProcess(const HostProcess &) = delete;
    HostProcess &operator=(const HostProcess &) = delete;

    [[nodiscard]] ObjectPtr root() const { return m_client->root(); }

  private:
    [[nodiscard]] QString socketPath() const { return m_folder.filePath(QStringLiteral("host.socket")); }

    [[noreturn]] void runHost() const {
        char name[] = "host";
        char *arguments[] = {name, nullptr};
        int count = 1;
        const QCoreApplication application(count, arguments);
        const ObjectPtr root = wrap(std::make_shared<sample::Sample>());
        const Server server([root] { return root; }, socketPath());
        ::_exit(QCoreApplication::exec());
    }

    QTemporaryDir m_folder;
    pid_t m_child = 0;
    std::unique_ptr<Client> m_client;
};

ObjectPtr localRoot() { return wrap(std::make_shared<sample::Sample>()); }

void get(benchmark::State &state, Object &root) {
    for (auto _ : state)
        benchmark::DoNotOptimize(root.get("Name"));
}

void put(benchmark::State &state, Object &root) {
    for (auto _ : state)
        root.put("Number", 1);
}

void call(benchmark::State &state, Object &root) {
    for (auto _ : state)
        benchmark::DoNotOptimize(root.call("Add", {1, 2}));
}

/// An object that is made, handed over and given up again.
void object(benchmark::State &state, Object &root) {
    for (auto _ : state)
        benchmark::DoNotOptimize(root.call("NewChild", {"child"}));
}

/// A call whose event comes back to a handler before it returns.
void callWithEvent(benchmark::State &state, Object &root) {
    const SubscriptionPtr write = root.connect("Write", [](ValueList &arguments) { arguments[0] = true; });
    for (auto _ : state)
        benchmark::DoNotOptimize(root.call("Save", {}));
}

void text(benchmark::State &state, Object &root) {
    const ValueList arguments{QString(state.range(0), u'x')};
    for (auto _ : state)
        benchmark::DoNotOptimize(root.call("Echo", arguments));
    state.SetBytesProcessed(state.iterations() * state.range(0) * 4);
}

using Body = void (*)(benchmark::State &, Object &);

void local(benchmark::State &state, Body body) { body(state, *localRoot()); }

void remote(benchmark::State &state, Body body) {
    const HostProcess host;
    body(state, *host.root());
}

BENCHMARK_CAPTURE(local, get, get);
BENCHMARK_CAPTURE(local, put, put);
BENCHMARK_CAPTURE(local, call, call);
BENCHMARK_CAPTURE(local, object, object);
BENCHMARK_CAPTURE(local, callWithEvent, callWithEvent);
// The host works in another process: only real time tells.
BENCHMARK_CAPTURE(remote, get, get)->UseRealTime();
BENCHMARK_CAPTURE(remote, put, put)->UseRealTime();
BENCHMARK_CAPTURE(remote, call, call)->UseRealTime();
BENCHMARK_CAPTURE(remote, object, object)->UseRealTime();
BENCHMARK_CAPTURE(remote, callWithEvent, callWithEvent)->UseRealTime();
BENCHMARK_CAPTURE(remote, text, text)->Arg(1 << 10)->Arg(1 << 20)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
