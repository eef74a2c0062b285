// A client that dies at any moment of a mail's road, and what the repair makes of it: one whole ticket with one
// confirmation and one copy, or one filed reply with one work row. The same for a repair that dies.

#include "orvelle/mail/finish.h"

#include "orvelle/core/process.h"
#include "orvelle/mail/foldermonitor.h"
#include "orvelle/mail/intake.h"
#include "platform/window/window.h"
#include "support/helpdesk.h"

namespace {

using Remedy = cLeftover::Remedy;

/// Answers everything with the cautious answer: whoever has died tells nobody.
struct Nobody : window::Asker {
    window::Answer ask(const window::Question &question) override { return question.cautious; }
    QString show(window::Sheet &sheet) override { return sheet.cautious; }
};

struct Road {
    const char *name;
    const char *messageClass;
    bool isScanned;
    bool isReply;
    bool hasSubFolders;
};

class Deaths : public support::Helpdesk {
  protected:
    void prepare(bool hasSubFolders) {
        setSetting("EmailSubFolders", hasSubFolders ? "1" : "0");
        setSetting("ConvertedEmailMessage", "Ticket [TICKETID] was made.");
        setSetting("ConvertedEmailSubject", "Helpdesk Ticket {[TICKETID]}");
        // Nobody watches the folder, so that each mail is handled when the test says so.
        put(intake(), "IPM.Appointment", "in the way");
        m_questions = countQuestions();
        m_medic = &newCopy();
        m_medic->answers.expect("in the way");
        m_medic->run.start();
    }

    /// Runs a step, on what has come in, in a copy whose host is gone after so many questions. Gives whether it came to
    /// that.
    bool dieAfter(int questions, const std::function<void()> &comesIn, const std::function<void()> &step) {
        support::Copy &victim = newCopy();
        victim.in([] { window::asker = std::make_shared<Nobody>(); });
        victim.run.start();
        if (!victim.run.alive())
            ADD_FAILURE() << "the victim did not live";
        victim.in(comesIn);
        int asked = 0;
        m_questions->before = [&](const QString &) {
            if (&ProgramCopy::current() == &victim.run.copy() && ++asked > questions)
                throw Failure(failures::peerGone);
        };
        victim.in([&] {
            try {
                step();
            } catch (const ProcessEnd &) {
            } catch (const Failure &) {
            }
        });
        const bool isDead = asked > questions;
        // What the end of the process would clean up is not reached either.
        victim.run.quit();
        m_questions->before = nullptr;
        bury();
        return isDead;
    }

    /// Everybody who has a claim on anything has died.
    void bury() {
        const auto buryIn = [](const host::MAPIFolder &folder) {
            const host::Items items = folder.Items();
            for (qint32 at = items.Count(); at >= 1; --at) {
                const host::Item item = items.Item(at);
                const host::UserProperty claim = item.UserProperties().Find(strClaimProperty);
                if (claim.isNothing())
                    continue;
                QStringList parts = toText(claim.value()).split(u'/');
                parts[3] = "2147483646";
                claim.setValue(parts.join(u'/'));
                item.Save();
            }
        };
        buryIn(intake());
        buryIn(tickets());
        const host::Folders folders = tickets().Folders();
        for (host::MAPIFolder each = folders.GetFirst(); each; each = folders.GetNext())
            Attempt([&] { buryIn(each.Folders("Received")); });
    }

    /// The findings that are to be repaired.
    QList<cLeftover> leftovers() {
        return m_medic->in([] {
            QList<cLeftover> found = fncAllLeftovers();
            found.removeIf([](const cLeftover &each) {
                return each.remedy != Remedy::Repair && each.remedy != Remedy::RepairIfOld;
            });
            return found;
        });
    }

    void repair() {
        for (const cLeftover &each : leftovers()) {
            EXPECT_EQ(each.remedy, Remedy::Repair) << each.strText.toStdString();
            const cFinished finished = m_medic->in([&] { return fncFinish(each); });
            EXPECT_TRUE(finished.blnDone) << each.strText.toStdString() << ": " << finished.strText.toStdString();
        }
    }

    [[nodiscard]] static int countOf(const host::MAPIFolder &folder, const QString &subject) {
        return static_cast<int>(subjects(folder).count(subject));
    }
    [[nodiscard]] int confirmationsOf(const QString &ticket) const {
        int sent = 0;
        for (const QByteArray &mail : outgoing())
            sent += mail.contains("Subject: Helpdesk Ticket {" + ticket.toUtf8() + "}") ? 1 : 0;
        return sent;
    }

    static void handle(const Road &road, const QString &subject) {
        const host::MAPIFolder folder = onsMAPI->Folders("Mailbox - Alma Tester").Folders("Support");
        const host::Item item = folder.FindItem("[Subject] = '" + subject + "'");
        if (road.isScanned && fncIsNewMailItem(item))
            subHandleScannedItem(item, folder);
        else if (!road.isScanned)
            subHandleNewItem(item, folder);
    }

    void bring(const Road &road, const QString &subject) {
        if (QString(road.messageClass) == "IPM.Post")
            put(intake(), "IPM.Post", subject);
        else
            deliver({.subject = subject});
    }

    void expectTicket(const Road &road, const QString &subject) {
        ASSERT_EQ(countOf(tickets(), subject), 1);
        const QString number = property(tickets().Items().Find("[Subject] = '" + subject + "'"), "Ticket ID");
        EXPECT_EQ(rows("SELECT * FROM tblTickets WHERE strTicketSubject = '" + subject + "'", {"strTicketID"}),
                  QStringList{number});
        EXPECT_EQ(countOf(intake(), subject), 0);
        ASSERT_EQ(countOf(intake().Folders("Converted"), subject), 1);
        const host::Item mail = intake().Folders("Converted").Items().Find("[Subject] = '" + subject + "'");
        const bool isPost = QString(road.messageClass) == "IPM.Post";
        EXPECT_EQ(mail.BillingInformation(), isPost ? QString(strWorkingMark) : number);
        // The post is the helpdesk's own, and to itself it sends nothing.
        EXPECT_EQ(confirmationsOf(number), isPost ? 0 : 1);
        if (road.hasSubFolders) {
            EXPECT_EQ(countOf(tickets().Folders(number).Folders("Received"), subject), 1);
        }
        EXPECT_EQ(tickets().Items().Count(), m_expectedTickets);
    }

    /// Every so many questions a client dies; ORVELLE_DEATHS=1 is every question.
    const int m_stride = std::max(qEnvironmentVariableIntValue("ORVELLE_DEATHS"), 0) > 0
                             ? qEnvironmentVariableIntValue("ORVELLE_DEATHS")
                             : 4;
    support::Counting::Log m_questions;
    support::Copy *m_medic = nullptr;
    int m_expectedTickets = 0;
};

class DeathOnTheRoad : public Deaths, public testing::WithParamInterface<Road> {};

TEST_P(DeathOnTheRoad, IsRepairedWhereverItCame) {
    const Road &road = GetParam();
    prepare(road.hasSubFolders);
    if (road.isReply) {
        deliver({.subject = "a problem"});
        m_medic->in([&] { handle(road, "a problem"); });
        ASSERT_EQ(subjects(tickets()), QStringList{"a problem"});
    }
    bool isDead = true;
    int handled = 0;
    for (int questions = 0; isDead; questions += m_stride) {
        SCOPED_TRACE(questions);
        const QString subject = QString(road.isReply ? "Re {1} %1" : "Mail %1").arg(questions);
        isDead = dieAfter(
            questions, [&] { bring(road, subject); }, [&] { handle(road, subject); });
        repair();
        // One that nobody had begun is still new.
        if (countOf(intake(), subject) > 0)
            m_medic->in([&] { handle({"", "", true, false, false}, subject); });
        EXPECT_EQ(leftovers().size(), 0);
        if (road.isReply) {
            EXPECT_EQ(countOf(tickets().Folders("1").Folders("Received"), subject), 1);
            EXPECT_EQ(countOf(intake(), subject), 0);
            EXPECT_EQ(rows("SELECT * FROM tblWork", {"intTicketID"}).size(), ++handled);
        } else {
            ++m_expectedTickets;
            expectTicket(road, subject);
        }
        if (HasFailure())
            return;
    }
}

// The first client dies where most is open: half a ticket, a whole one, a draft, a copy beside the mail. Then the
// repair dies, and the next one finishes.
TEST_F(Deaths, OfARepairAreRepaired) {
    const Road road{"mail", "IPM.Note", true, false, true};
    prepare(true);
    for (const int diedAt : {95, 112, 128, 142, 168}) {
        bool isDead = true;
        for (int questions = diedAt % 5; isDead; questions += 5 * m_stride) {
            SCOPED_TRACE(QString("%1 %2").arg(diedAt).arg(questions).toStdString());
            const QString subject = QString("Mail %1 %2").arg(diedAt).arg(questions);
            dieAfter(
                diedAt, [&] { bring(road, subject); }, [&] { handle(road, subject); });
            QList<cLeftover> found;
            isDead = dieAfter(
                questions, [&] { found = fncAllLeftovers(); },
                [&] {
                    for (const cLeftover &each : found) {
                        if (each.remedy == Remedy::Repair)
                            static_cast<void>(fncFinish(each));
                    }
                });
            found.clear();
            repair();
            EXPECT_EQ(leftovers().size(), 0);
            ++m_expectedTickets;
            expectTicket(road, subject);
            if (HasFailure())
                return;
        }
    }
}

struct ClaimCase {
    const char *name;
    /// Which part of the claim is another one, and what it is: of the process from 0 (0 is the machine with its start,
    /// 3 keeps the process), from 10 on of the claim itself; -1 for no claim at all.
    int part;
    const char *text;
    /// What is to be done with a mail that has a whole ticket; null where it is no leftover.
    std::optional<Remedy> remedy;
    int confirmations;
};

class Judgement : public Deaths, public testing::WithParamInterface<ClaimCase> {};

// Only what is certain is done without being asked for; and nobody gets a confirmation of which it is not certain that
// it is the first.
TEST_P(Judgement, RestsOnWhatIsKnownOfTheClient) {
    const ClaimCase &each = GetParam();
    prepare(false);
    deliver({.subject = "numbered"});
    const QString claim = m_medic->in([] { return cClaim::Own().ToString(); });
    m_medic->in([] { handle({"", "", true, false, false}, "numbered"); });
    host::Item item = intake().Folders("Converted").Items().Item(1);
    ASSERT_EQ(confirmationsOf("1"), 1);
    // Back in the folder, as if it had never been confirmed.
    item.UserProperties().Find(strWorkProperty).setValue(item.EntryID());
    QStringList parts = claim.split(u'|');
    QStringList process = parts[0].split(u'/');
    if (each.part != 3)
        process[3] = "2147483646";
    if (each.part == 0)
        process[1] = each.text;
    if (each.part >= 0 && each.part < 10 && each.part != 3)
        process[each.part] = each.text;
    parts[0] = process.join(u'/');
    if (each.part >= 10)
        parts[each.part - 10] = each.text;
    item.UserProperties().Find(strClaimProperty).setValue(each.part < 0 ? QString() : parts.join(u'|'));
    item.Move(intake());
    const host::MAPIFolder sent = mapi().GetDefaultFolder(5);
    while (sent.Items().Count() > 0)
        sent.Items().Item(1).Delete();
    const host::MAPIFolder deleted = mapi().GetDefaultFolder(3);
    while (deleted.Items().Count() > 0)
        deleted.Items().Item(1).Delete();

    const QList<cLeftover> found = leftovers();
    ASSERT_EQ(found.size(), each.remedy ? 1 : 0);
    if (!each.remedy)
        return;
    EXPECT_EQ(found[0].remedy, *each.remedy) << found[0].strText.toStdString();
    EXPECT_TRUE(m_medic->in([&] { return fncFinish(found[0]); }).blnDone);
    EXPECT_EQ(countOf(intake(), "numbered"), 0);
    EXPECT_EQ(confirmationsOf("1"), each.confirmations);
}

INSTANTIATE_TEST_SUITE_P(Claims, Judgement,
                         testing::Values(ClaimCase{"dead", 5, "", Remedy::Repair, 2},
                                         ClaimCase{"running", 3, "", std::nullopt, 1},
                                         ClaimCase{"another_container", 2, "pid%3A%5B1%5D", Remedy::RepairIfOld, 2},
                                         ClaimCase{"before_a_restart", 1, "other", Remedy::Repair, 2},
                                         ClaimCase{"another_machine", 0, "other", Remedy::RepairIfOld, 2},
                                         ClaimCase{"another_mailbox", 12, "0123", Remedy::RepairIfOld, 1},
                                         ClaimCase{"none", -1, "", Remedy::RepairIfOld, 1},
                                         ClaimCase{"nonsense", 10, "a/b/c", Remedy::RepairIfOld, 1}),
                         [](const auto &each) { return each.param.name; });

// What needs a person, or is only to be known, is listed and left.
TEST_F(Deaths, LeaveWhatAPersonHasToDecide) {
    setSetting("EmailSubFolders", "1");
    prepare(true);
    deliver({.subject = "gone"});
    deliver({.subject = "Re: {nobody}"});
    m_medic->in([] {
        handle({"", "", true, false, false}, "gone");
        handle({"", "", true, false, false}, "Re: {nobody}");
    });
    tickets().Items().Find("[Subject] = 'gone'").Delete();
    const host::Item odd = put(intake(), "IPM.Note", "with a strange number");
    odd.BillingInformation("77");
    odd.Save();
    put(tickets(), "IPM.Post.HelpDesk.Ticket.8", "made by hand");
    QStringList told;
    for (const cLeftover &each : m_medic->in([] { return fncAllLeftovers(); }))
        told << fncKindName(each.kind) + ": " + each.strSubject + each.strTicketID;
    told.sort();
    EXPECT_EQ(told, (QStringList{"folder of no ticket: nobody", "item in the way: in the way",
                                 "mail with an unknown number: with a strange number77", "row without ticket: gone1"}));
}

TEST_F(Deaths, AreNoReasonForMailThatWasHeldBack) {
    prepare(true);
    const host::MAPIFolder notSent = mailbox().Folders().Add("Not sent", 6);
    put(notSent, "IPM.Note", "somebody's own");
    for (int i = 1; i <= 53; ++i) {
        const host::Item item = put(notSent, "IPM.Note", QString("answer %1").arg(i));
        item.put("To", QString("robot%1@example.org").arg(i));
        item.UserProperties().Add("Not sent because", 1).setValue("It is a robot.");
        item.Save();
    }
    QList<cLeftover> told = m_medic->in([] { return fncAllLeftovers(); });
    told.removeIf([](const cLeftover &each) { return each.kind != cLeftover::Kind::NotSent; });
    ASSERT_EQ(told.size(), 51);
    EXPECT_EQ(told.first().strSubject + ": " + told.first().strText,
              "answer 53: it was not sent to robot53@example.org: It is a robot");
    EXPECT_EQ(told.last().strText, "4 older ones lie here too");
    for (const cLeftover &each : told)
        EXPECT_EQ(each.remedy, cLeftover::Remedy::None);
}

INSTANTIATE_TEST_SUITE_P(Roads, DeathOnTheRoad,
                         testing::Values(Road{"scanned_mail", "IPM.Note", true, false, true},
                                         Road{"new_mail", "IPM.Note", false, false, false},
                                         Road{"scanned_post", "IPM.Post", true, false, true},
                                         Road{"scanned_reply", "IPM.Note", true, true, true},
                                         Road{"new_reply", "IPM.Note", false, true, true}),
                         [](const auto &each) { return each.param.name; });

} // namespace
