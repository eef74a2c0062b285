// How fast mail is read and written: small plain messages, what a day's helpdesk gets, and one with a large attachment.
#include "desk/mail/composer.h"
#include "desk/mail/html.h"
#include "desk/mail/parser.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>

using namespace desk;

namespace {

void report(benchmark::State &state, qint64 bytesInRound, qint64 messagesInRound) {
    state.SetBytesProcessed(state.iterations() * bytesInRound);
    state.SetItemsProcessed(state.iterations() * messagesInRound);
}

QList<QByteArray> examples() {
    QList<QByteArray> messages;
    const QDir folder(ORVELLE_EXAMPLES);
    for (const QString &name : folder.entryList({"*.eml"}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            messages += file.readAll();
    }
    return messages;
}

Message large(qsizetype size) {
    Message message;
    message.subject = "Scan of the contract";
    message.from = {"Marta Lindqvist", "marta@tallbrook.example"};
    message.text = "See attachment.\r\n";
    Attachment scan;
    scan.name = "scan.pdf";
    scan.data = QByteArray(size, '\0');
    for (qsizetype i = 0; i < size; ++i)
        scan.data[i] = static_cast<char>(i * 31 + i / 257);
    message.attachments = {scan};
    return message;
}

void parseExamples(benchmark::State &state) {
    const QList<QByteArray> messages = examples();
    qint64 bytes = 0;
    for (const QByteArray &message : messages)
        bytes += message.size();
    for (auto unused : state) {
        static_cast<void>(unused);
        for (const QByteArray &message : messages)
            benchmark::DoNotOptimize(parseMessage(message));
    }
    report(state, bytes, messages.size());
}
BENCHMARK(parseExamples);

void parseLarge(benchmark::State &state) {
    const QByteArray bytes = composeMessage(large(state.range(0)));
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(parseMessage(bytes));
    }
    report(state, bytes.size(), 1);
}
BENCHMARK(parseLarge)->Arg(1 << 20)->Arg(25 << 20)->Unit(benchmark::kMillisecond);

void composeLarge(benchmark::State &state) {
    const Message message = large(state.range(0));
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(composeMessage(message));
    }
    report(state, state.range(0), 1);
}
BENCHMARK(composeLarge)->Arg(1 << 20)->Arg(25 << 20)->Unit(benchmark::kMillisecond);

/// As many parts as the reader takes and more, each a few bytes: time must stay in line with the size.
void parseManyParts(benchmark::State &state) {
    QByteArray bytes = "Content-Type: multipart/mixed; boundary=b\r\n\r\n";
    for (int i = 0; i < state.range(0); ++i)
        bytes += "--b\r\n\r\nx\r\n";
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(parseMessage(bytes));
    }
    report(state, bytes.size(), 1);
}
BENCHMARK(parseManyParts)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
