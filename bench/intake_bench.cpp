// Mails per second on the whole road from a monitored folder to a ticket: with the program in the desk's process, with
// the two in processes of their own, and the floor: the commits that the road made, replayed with as many pages each
// through the bare database library.
//
// The three run in turn on the same mails. ORVELLE_BENCH_MAILS gives their number (default 200).

#include "helpdesk.h"
#include "orvelle/program/programrun.h"
#include "platform/ado/jet/engine.h"
#include "platform/registry/registry.h"

#include <QCoreApplication>
#include <QDir>

namespace {

int mailCount() { return numberFrom("ORVELLE_BENCH_MAILS", 200); }

/// The example mails but the replies, over and over.
const std::vector<QByteArray> &mails() {
    static const std::vector<QByteArray> all = [] {
        std::vector<QByteArray> messages;
        const QDir folder(QStringLiteral(ORVELLE_EXAMPLES));
        for (const QString &name : folder.entryList({QStringLiteral("*.eml")}, QDir::Files, QDir::Name)) {
            QFile file(folder.filePath(name));
            if (file.open(QIODevice::ReadOnly))
                messages.push_back(file.readAll());
        }
        return messages;
    }();
    return all;
}

/// Set by the last run of each kind.
Result inProcess;
Result twoProcesses;

Result convertExamples(Situation &situation) {
    Feeder feeder(situation.mailboxFile());
    return convert(situation, mailCount(),
                   [&](int number) { feeder.put(mails()[static_cast<std::size_t>(number) % mails().size()]); });
}

void oneProcess(benchmark::State &state) {
    for ([[maybe_unused]] const auto &_ : state) {
        Situation situation;
        ProgramSetup setup;
        setup.host = [&] { return situation.desk().application(); };
        setup.strProgramFolder = situation.programFolder();
        ProgramRun run(std::move(setup));
        {
            const ProgramCopy::Scope scope(run.copy());
            ado::addJetEngine();
            registry::fileOverride = situation.path("profile/registry.ini");
        }
        run.start();
        if (!situation.watched()) {
            state.SkipWithError("the program does not watch the folder");
            return;
        }
        inProcess = convertExamples(situation);
        state.SetIterationTime(inProcess.secondsPerMail * mailCount());
        run.quit();
    }
    report(state, inProcess);
}

void acrossProcesses(benchmark::State &state) {
    for ([[maybe_unused]] const auto &_ : state) {
        Situation situation;
        const OtherProcess orvelle(situation);
        if (!orvelle.isWatching()) {
            state.SkipWithError("orvelle did not start watching");
            return;
        }
        twoProcesses = convertExamples(situation);
        state.SetIterationTime(twoProcesses.secondsPerMail * mailCount());
    }
    report(state, twoProcesses);
}

BENCHMARK(oneProcess)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(acrossProcesses)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    printBesideFloor("one process", inProcess);
    printBesideFloor("two processes", twoProcesses);
    return 0;
}
