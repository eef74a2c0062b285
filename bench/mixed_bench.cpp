// A helpdesk's mixed mail across two processes: plain texts, HTML, and attachments of 20 kB to 2 MB. How many mails a
// second, beside the floor of the same commits and bytes; and the most memory that the desk's process and the program's
// ever held, after the first mails and after all of them.
//
// ORVELLE_BENCH_MAILS gives the number of mails (default 2000). The first hundred hold every kind and size there is. A
// third process puts them into the folder; beside the desk, its process holds no more than the floor's three files.

#include "helpdesk.h"

#include "desk/mail/composer.h"
#include "platform/value/failure.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <cmath>
#include <cstdio>
#include <iostream>
#include <random>

namespace {

constexpr int cycle = 100;

using Generator = std::mt19937;

int between(Generator &random, int least, int most) {
    return least + static_cast<int>(random() % static_cast<Generator::result_type>(most - least + 1));
}

QString words(Generator &random, int letters) {
    static const QStringList known{"printer", "login",     "the",       "does", "not",     "screen",
                                   "since",   "yesterday", "löschen",   "nach", "fönster", "cable",
                                   "again",   "password",  "quarterly", "π",    "export",  "please"};
    QString text;
    while (text.size() < letters)
        text += known[between(random, 0, static_cast<int>(known.size()) - 1)] + (random() % 12 == 0 ? ".\r\n" : " ");
    return text;
}

/// Bytes that don't compress, as those of pictures and archives.
desk::Attachment attachment(Generator &random, int index, int size) {
    desk::Attachment made;
    made.name = QStringLiteral("file %1.bin").arg(index);
    made.data.resize(size);
    for (char &byte : made.data)
        byte = static_cast<char>(random());
    return made;
}

/// From 20 kB to 2 MB, as many between 20 and 200 kB as between 200 kB and 2 MB. `step` is 0 to 1.
int sizeAt(double step) { return static_cast<int>(20e3 * std::pow(100.0, step)); }

/// Of ten mails five are plain, three are HTML, two bring files.
QByteArray mixedMail(int number) {
    Generator random(static_cast<Generator::result_type>(number));
    const int place = number % cycle;
    const int kind = place % 10;
    desk::Message message;
    message.subject = QStringLiteral("Request %1: %2").arg(number).arg(words(random, 20).simplified());
    message.from = {"Person " + QString::number(number % 50), QStringLiteral("p%1@example.org").arg(number % 50)};
    message.to = {{"Helpdesk", "helpdesk@example.org"}};
    message.text = words(random, between(random, 300, 3000));
    if (kind >= 5 && kind < 8)
        message.html = "<html><body><p>" + words(random, between(random, 5000, 40000)) + "</p></body></html>";
    if (kind >= 8) {
        // The twenty of a cycle go through all sizes.
        const double step = (place / 10 + 10 * (kind - 8)) / 19.0;
        message.attachments = {attachment(random, 1, sizeAt(step))};
        if (kind == 9)
            message.attachments += attachment(random, 2, 20000);
    }
    return desk::composeMessage(message);
}

/// The process that feeds: a mail for each number it reads.
int feed(const QString &mailboxFile) {
    Feeder feeder(mailboxFile);
    for (int number = 0; std::cin >> number; std::cout << "ok" << std::endl)
        feeder.put(mixedMail(number));
    return 0;
}

class FeedingProcess {
  public:
    explicit FeedingProcess(const Situation &situation) {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), {"--feed", situation.mailboxFile()});
    }
    ~FeedingProcess() {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }
    FeedingProcess(const FeedingProcess &) = delete;
    FeedingProcess &operator=(const FeedingProcess &) = delete;

    void put(int number) {
        m_process.write(QByteArray::number(number) + '\n');
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead())
                throw Failure(failures::unspecified, "The feeding process does not answer.");
        }
        m_process.readLine();
    }

  private:
    QProcess m_process;
};

/// The most memory that a process held at any time, in MB.
double peakOf(qint64 process) {
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).replace("kB", "").trimmed().toDouble() / 1000;
    }
    return 0;
}

void printPeaks(int mails, const OtherProcess &orvelle) {
    std::printf("after %5d mails: desk %6.1f MB, orvelle %6.1f MB at most\n", mails,
                peakOf(QCoreApplication::applicationPid()), peakOf(orvelle.id()));
    std::fflush(stdout);
}

int run() {
    const int count = numberFrom("ORVELLE_BENCH_MAILS", 2000);
    Situation situation;
    const OtherProcess orvelle(situation);
    if (!orvelle.isWatching()) {
        std::fprintf(stderr, "orvelle did not start watching\n");
        return 1;
    }
    FeedingProcess feeding(situation);
    Result all;
    Floor floor;
    double bare = 0;
    for (int done = 0; done < count;) {
        const int more = std::min(cycle, count - done);
        const Result part = convert(situation, more, [&](int number) { feeding.put(done + number); });
        all.secondsPerMail = (all.secondsPerMail * done + part.secondsPerMail * more) / (done + more);
        all.work.insert(all.work.end(), part.work.begin(), part.work.end());
        // In turns with the road, so that what else the machine does meets both.
        bare = (bare * done + floor.replay(part.work) * more) / (done + more);
        done += more;
        if (done == cycle || done % (5 * cycle) == 0 || done == count)
            printPeaks(done, orvelle);
    }
    const Volume volume = volumeOf(all);
    std::printf("%.1f commits and %.0f kB a mail\n%.0f mails/s, floor %.0f mails/s, ratio %.2f\n",
                volume.commitsPerMail, volume.kilobytesPerMail, 1 / all.secondsPerMail, 1 / bare,
                all.secondsPerMail / bare);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    return arguments.size() == 3 && arguments[1] == "--feed" ? feed(arguments[2]) : run();
}
