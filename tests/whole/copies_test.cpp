// Copies of the program side by side: whoever converts a mail, it becomes one ticket with one number, one row and one
// confirmation, and nobody hears of the others.
//
// ORVELLE_COPIES gives the number of people (default 3), ORVELLE_MAILS that of mails (default 40).

#include "whole/copies.h"
#include "whole/mails.h"

#include <QElapsedTimer>

namespace whole {
namespace {

class CopiesTest : public Copies {
  protected:
    const int copies = numberFrom("ORVELLE_COPIES", 3);
    const int all = numberFrom("ORVELLE_MAILS", 40);

    void SetUp() override { open(copies); }
    void TearDown() override {
        endAll();
        EXPECT_EQ(count(intake), 0) << "flag items or mails were left behind";
        expectBooks();
    }

    /// Nothing but the marks of the mail stands between the copies when the flag item of each is gone before the next
    /// one starts.
    void letAllWatch() {
        for (const auto &person : people()) {
            removeFlagItems(intake);
            person->startOrvelle();
            ASSERT_TRUE(waitFor([&] { return flagCount() == 1; }));
        }
    }
    void report(const char *what, int converted, const QElapsedTimer &timer) const {
        const double seconds = static_cast<double>(timer.elapsed()) / 1000;
        std::printf("%d copies, %s: %d mails in %.1f s, %.0f a second\n", copies, what, converted, seconds,
                    converted / seconds);
    }
};

TEST_F(CopiesTest, StartedAtOnceTheyShareTheMailsThatLieThere) {
    deliverMails(all / 2);
    QElapsedTimer timer;
    timer.start();
    for (const auto &person : people())
        person->startOrvelle();
    waitForAll();
    report("all starting on a full folder", mails(), timer);
    // Who leaves the folder empty takes it; two may, when they look at the same moment.
    ASSERT_TRUE(waitFor([&] { return flagCount() > 0; }));
    const int watching = flagCount();
    timer.restart();
    const int before = mails();
    deliverMails(all - before);
    waitForAll();
    report(qPrintable(QStringLiteral("%1 of them watching").arg(watching)), mails() - before, timer);
    EXPECT_EQ(count(intake), flagCount());
}

TEST_F(CopiesTest, WatchingTheSameFolderEachMailHasOneTaker) {
    ASSERT_NO_FATAL_FAILURE(letAllWatch());
    QElapsedTimer timer;
    timer.start();
    deliverMails(all);
    waitForAll();
    report("all watching", mails(), timer);
}

TEST_F(CopiesTest, WatchingTheSameFolderTheyFileEachReplyOnce) {
    constexpr int repliesToEach = 6;
    const int tickets = 1 + all / 10;
    settings({"set", "EmailSubFolders", "1"});
    ASSERT_NO_FATAL_FAILURE(letAllWatch());
    deliverMails(tickets);
    waitForAll();
    QStringList replies{"deliver", "--folder", intake};
    for (int number = 0; number < tickets * repliesToEach; ++number) {
        const int ticket = 1 + number / repliesToEach;
        replies += write(QStringLiteral("reply%1.eml").arg(number),
                         "Subject: Re: {" + QByteArray::number(ticket) + "}\r\n\r\nIt works again.\r\n");
    }
    command(replies);
    ASSERT_TRUE(waitFor([&] { return count(intake) == flagCount(); }, 60000));
    for (int ticket = 1; ticket <= tickets; ++ticket) {
        // A copy of the mail is the first there.
        EXPECT_EQ(count(ticketFolder + QStringLiteral("\\%1\\Received").arg(ticket)), 1 + repliesToEach);
        EXPECT_EQ(workRows(ticket), repliesToEach);
    }
}

TEST_F(Helpdesk, OfSeveralProgramsOnOneDeskOneStays) {
    const int mails = numberFrom("ORVELLE_MAILS", 40) / 4;
    QStringList files;
    for (int mail = 0; mail < mails; ++mail)
        files += write(subjectOf(mail) + ".eml", mailOf(mail));
    deliver(files);
    startDesk();
    std::vector<std::unique_ptr<QProcess>> programs;
    for (int copy = 0; copy < numberFrom("ORVELLE_COPIES", 3); ++copy) {
        programs.push_back(process("orvelle", {}));
        programs.back()->start();
    }
    const auto running = [&] {
        return std::ranges::count_if(programs, [](auto &each) { return each->state() != QProcess::NotRunning; });
    };
    ASSERT_TRUE(waitFor([&] { return running() == 1 && folderExists(converted) && count(converted) == mails; }, 60000));
    ASSERT_TRUE(waitFor([&] { return count(inbox) == 1; }));
    EXPECT_EQ(count(ticketFolder), mails);
    EXPECT_EQ(running(), 1);
    for (const auto &program : programs) {
        program->terminate();
        ASSERT_TRUE(program->state() == QProcess::NotRunning || program->waitForFinished());
        EXPECT_EQ(program->exitCode(), 0);
        EXPECT_EQ(program->readAllStandardError().toStdString(), "");
    }
    EXPECT_EQ(count(inbox), 0);
}

} // namespace
} // namespace whole
