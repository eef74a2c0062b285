// A ticket as a mail that the person sends, and on paper.

#include "orvelle/mail/output.h"

#include "orvelle/core/process.h"
#include "orvelle/ticket/ticket.h"
#include "support/fakeobject.h"
#include "support/helpdesk.h"

#include <QCoreApplication>

namespace {

class TicketOutput : public support::Helpdesk {
  protected:
    void output(const QString &to, const host::Item &item = {}) {
        cTicket ticket;
        ticket.TicketID = "12";
        ticket.Subject = "no toner";
        ticket.HTMLDescription = "<p>It is empty.</p>";
        m_copy.in([&] { subOutputTicket(ticket, to, 3, item); });
    }
    support::Copy &m_copy = start();
};

TEST_F(TicketOutput, WithoutAnAddressIsPrintedAndNeitherShownNorKept) {
    const support::Launches launches;
    output("");
    EXPECT_TRUE(launches.started().isEmpty()) << "no client waits for the paper";
    QCoreApplication::processEvents();
    ASSERT_EQ(launches.started().size(), 1);
    EXPECT_TRUE(launches.started().first().startsWith("lp|-t|Printout|--|"))
        << launches.started().first().toStdString();
    EXPECT_EQ(app().Inspectors().Count(), 0);
    EXPECT_TRUE(subjects(mapi().GetDefaultFolder(16)).isEmpty());
}

TEST_F(TicketOutput, WithAnAddressIsShownWithTheTicketsFiles) {
    deliver({.subject = "no toner", .files = {{"log.txt", "one"}}});
    output("cal@example.org", tickets().Items().Item(1));
    ASSERT_EQ(app().Inspectors().Count(), 1);
    const host::MailItem mail(app().Inspectors().Item(1).CurrentItem().object());
    EXPECT_EQ(mail.To(), "cal@example.org");
    EXPECT_EQ(mail.Subject(), "Ticket: no toner {12}");
    EXPECT_TRUE(mail.HTMLBody().contains("<p>It is empty.</p>"));
    EXPECT_EQ(mail.Attachments().Count(), 1);
    EXPECT_TRUE(outgoing().isEmpty()) << "nothing is sent without the person";
}

TEST_F(TicketOutput, IgnoresWhatFails) {
    m_copy.in([] {
        const auto hostWithoutMail = std::make_shared<support::FakeObject>("Application");
        ouaOutlook = host::Application(automation::ObjectPtr(hostWithoutMail));
    });
    output("");
    output("cal@example.org");
    EXPECT_EQ(app().Inspectors().Count(), 0);
    m_copy.in([this] { ouaOutlook = app(); });
}

} // namespace
