// What a ticket made from a mail holds: its caller, its text, and what happens without the safe-object library.

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "support/helpdesk.h"

namespace {

class CreateTicket : public support::Helpdesk {
  protected:
    host::Item onlyTicket() const { return tickets().Items().Item(1); }
    void addContact(const QString &name, const QString &address) const {
        const host::Item contact = mapi().GetDefaultFolder(10).Items().Add("IPM.Contact");
        contact.put("FullName", name);
        contact.put("Email1Address", address);
        contact.put("BusinessTelephoneNumber", "555 0101");
        contact.put("CompanyName", "Example Works");
        contact.Save();
    }
};

TEST_F(CreateTicket, AContactWithTheSendersAddressNamesTheCaller) {
    // The contact's name and address, and the sender: by address, by a name of the host's own directory, which gives
    // less, and by an address with an apostrophe.
    const std::array<const char *, 3> cases[] = {
        {"Carla Contact", "cal@example.org", "\"Cal Caller\" <cal@example.org>"},
        {"Dora Directory", "dora@example.org", "Dora Directory"},
        {"Conor O'Neill", "o'neill@example.org", "\"X\" <o'neill@example.org>"}};
    for (const auto &[name, address, from] : cases)
        addContact(name, address);
    start();
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        deliver({.from = cases[i][2]});
        const host::Item ticket = tickets().Items().Item(static_cast<qint32>(i) + 1);
        EXPECT_EQ(property(ticket, "Caller name"), cases[i][0]);
        EXPECT_EQ(property(ticket, "Caller phone"), "555 0101");
        if (i != 1) {
            EXPECT_EQ(property(ticket, "Caller category"), "Example Works");
            EXPECT_EQ(property(ticket, "Caller email"), cases[i][1]);
        }
    }
}

struct TextCase {
    const char *what;
    const char *html;
    const char *text;
    const char *expected;
};

class TicketText : public CreateTicket, public testing::WithParamInterface<TextCase> {};

TEST_P(TicketText, ComesFromTheMail) {
    setSetting("NewHTML", "<html><body>[[BODY]]</body></html>");
    start();
    deliver({.text = GetParam().text, .html = GetParam().html});
    EXPECT_TRUE(onlyTicket().HTMLBody().contains(GetParam().expected)) << onlyTicket().HTMLBody().toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, TicketText,
    testing::Values(TextCase{"html", "<html><BODY bgcolor=red><i>x</i></BODY></html>", "x", "[<i>x</i>]"},
                    TextCase{"plain", "", "from <cal@example.org>\r\ntwo", "[from &lt;cal@example.org&gt;<br>\r\ntwo"},
                    TextCase{"no body tag", "<p>one</p>", "one\r\ntwo", "[one<br>two"},
                    TextCase{"body without an end", "<body><p>x</p>", "x", "[<body><p>x</p>"}),
    [](const auto &each) { return QString(each.param.what).replace(' ', '_').toStdString(); });

TEST_F(CreateTicket, AnEmptySubjectStaysEmptyAndImportanceIsTaken) {
    start();
    deliver({.subject = ""});
    EXPECT_EQ(subjects(tickets()), QStringList{""});
    EXPECT_EQ(onlyTicket().Importance(), 1);
    EXPECT_EQ(rows("SELECT * FROM tblTickets", {"strTicketID", "intPriority"}), QStringList{"1|1"});
}

TEST_F(CreateTicket, WithoutTheLibraryATicketHasItsNumberAndAttachmentsAlone) {
    setClientTools(false);
    setSetting("ConvertedEmailMessage", "Ticket [TICKETID] was made.");
    auto &copy = newCopy();
    // Once for the add-in that is missing, once for the library.
    copy.answers.expect("Client Tools", window::No);
    copy.answers.expect("Client Tools", window::No);
    copy.run.start();
    deliver({.files = {{"log.txt", "all"}}});

    ASSERT_EQ(subjects(tickets()), QStringList{""});
    EXPECT_EQ(property(onlyTicket(), "Ticket ID"), "1");
    EXPECT_EQ(property(onlyTicket(), "Created by"), "Alma Tester");
    EXPECT_EQ(property(onlyTicket(), "Caller name"), "");
    EXPECT_EQ(onlyTicket().Attachments().Count(), 1);
    EXPECT_EQ(subjects(intake().Folders("Converted")), QStringList{"The printer is jammed"});
    // The confirmation is shown for the person to send.
    EXPECT_TRUE(outgoing().isEmpty());
    ASSERT_EQ(app().Inspectors().Count(), 1);
    EXPECT_EQ(app().Inspectors().Item(1).CurrentItem().Body().trimmed(), "Ticket 1 was made.");
}

class WithoutATicketFolder : public CreateTicket, public testing::WithParamInterface<window::Answer> {};

TEST_P(WithoutATicketFolder, ThePersonIsAskedAndTheRunEndsWhereNoneIsPicked) {
    auto &copy = start();
    copy.in([] { oufTickets = host::MAPIFolder(); });
    copy.answers.expect(copy.in([] { return LNGFAILEDTOFINDCRVFOLDER.text(); }), GetParam());
    if (GetParam() == window::Yes)
        copy.answers.expectSheet("frmPickFolder", "");
    tickets().call("Delete");
    deliver({});
    EXPECT_FALSE(copy.run.alive());
    EXPECT_EQ(copy.ends, 1);
    EXPECT_EQ(copy.run.exitStatus(), 0);
}

INSTANTIATE_TEST_SUITE_P(Answers, WithoutATicketFolder, testing::Values(window::Yes, window::No));

} // namespace
