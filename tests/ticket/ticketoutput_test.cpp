// The digest and the pages of a ticket.

#include "reference/program.h"
#include "ticket/ticket.h"

namespace {

class TicketOutputTest : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        subCreateSettings();
        m_ticket.Subject = "Smoke";
        m_ticket.TicketID = "12";
        m_ticket.TicketStatus = "Open";
        m_ticket.TicketPriority = 2;
        m_ticket.Description = "It burns";
        m_ticket.HTMLDescription = "<html>It burns</html>";
        m_ticket.Responsible = Ref<cResponsible>::make();
        m_ticket.Responsible->FullName = "Ann";
        m_ticket.ProblemType = Ref<cProblemType>::make();
        m_ticket.ProblemType->ProblemDescription = "Printer";
        m_ticket.Caller = Ref<cCaller>::make();
        m_ticket.Caller->FullName = "Cal";
    }
    static void setTemplate(const QString &name, const QString &page) {
        objSettings->OtherSettings->SetValue(name, page);
    }

    cTicket m_ticket;
};

TEST_F(TicketOutputTest, WritesTheDigest) {
    m_ticket.Caller->Email = "c@x";
    m_ticket.Caller->Telephone = "1";
    m_ticket.Caller->Category = "VIP";
    const QString equals(51, u'=');
    EXPECT_EQ(m_ticket.ToString().split("\r\n"),
              (QStringList{"Orvelle Ticket 12", equals, "Smoke", equals, "", LNGRESPONSIBLE + ":Ann",
                           LNGPROBLEMTYPE + ":Printer", "", LNGCALLER + ":", "=========", LNGNAME + ": Cal",
                           LNGEMAIL + ": c@x", LNGPHONE + ": 1", LNGCALLERCATEGORY + ": VIP", LNGMINUTES + ": 0", "",
                           "==============", "It burns"}));
}

TEST_F(TicketOutputTest, ADigestOfLittleIsStillWhole) {
    cTicket bare;
    const auto work = Ref<cWorkDescription>::make();
    work->Minutes = 32767;
    bare.WorkDescs->dicWorkDesc->Add("0", work);
    bare.WorkDescs->dicWorkDesc->Add("1", work);
    const QString equals(51, u'=');
    EXPECT_EQ(bare.ToString().split("\r\n"),
              (QStringList{"Orvelle Ticket ", equals, "", equals, "", LNGRESPONSIBLE + ":", LNGCALLER + ":",
                           "=========", LNGNAME + ": ", LNGMINUTES + ": ", "", "==============", ""}));
}

struct PageCase {
    const char *name;
    QString page;
    QString filled;
};

TEST_F(TicketOutputTest, FillsATemplate) {
    m_ticket.Caller->Email = "c@x";
    m_ticket.Caller->Telephone = "1";
    m_ticket.Caller->Category = "VIP";
    const QList<PageCase> cases{
        {"every field",
         "[TICKETID]|[SUBJECT]|[RESPONSIBLE]|[PROBLEMTYPE]|[DESCRIPTION]|[CALLERNAME]|[CALLEREMAIL]|"
         "[CALLERPHONE]|[CALLERCATEGORY]|[STATUS]|[PRIORITY]",
         "12|Smoke|Ann|Printer|<html>It burns</html>|Cal|c@x|1|VIP|Open|2"},
        {"twice", "[SUBJECT] [SUBJECT]", "Smoke Smoke"},
        {"unknown and lower case stay", "[DUE] [subject]", "[DUE] [subject]"},
        {"blanks around stay", "  [STATUS]  ", "  Open  "},
    };
    for (const PageCase &one : cases) {
        SCOPED_TRACE(one.name);
        setTemplate("EmailToCaller", one.page);
        EXPECT_EQ(m_ticket.ToHTML(1), one.filled);
    }
}

TEST_F(TicketOutputTest, FieldsThatAValueBringsInAreFilledByTheLaterOnes) {
    m_ticket.HTMLDescription = "[TICKETID][SUBJECT][PROBLEMTYPE][RESPONSIBLE][CALLERNAME][STATUS]";
    setTemplate("PrintOut", "[DESCRIPTION]");
    EXPECT_EQ(m_ticket.ToHTML(3), "[TICKETID][SUBJECT][PROBLEMTYPE]AnnCalOpen");
}

TEST_F(TicketOutputTest, EachOptionHasItsTemplateAndBlanksAreNone) {
    setTemplate("EmailToCaller", "caller");
    setTemplate("EmailToResponsible", "responsible");
    setTemplate("PrintOut", "   ");
    EXPECT_EQ(m_ticket.ToHTML(1), "caller");
    EXPECT_EQ(m_ticket.ToHTML(2), "responsible");
    EXPECT_EQ(m_ticket.ToHTML(3), m_ticket.ToHTML(99));
}

TEST_F(TicketOutputTest, HasAPageOfItsOwn) {
    m_ticket.Caller->Email = "c@x";
    EXPECT_EQ(m_ticket.ToHTML(1).split("\r\n"),
              (QStringList{"<html>",
                           "<head>",
                           "",
                           "<style>",
                           "p{ margin-bottom: -20 }</style>",
                           "",
                           "</head>",
                           "<body topmargin='0' leftmargin='0'>",
                           "<h3>Orvelle Ticket 12</h3>",
                           "<h3>Smoke</h3>",
                           "",
                           "<table  width='75%'>",
                           "<tr><td width='28%'>",
                           LNGRESPONSIBLE + ":</td><td width='72%'>Ann</td>",
                           "<tr><td width='28%'>",
                           LNGPROBLEMTYPE + ":</td><td width='72%'>Printer</td>",
                           "</table>",
                           "<h3>" + LNGDESCRIPTION + "</h3>",
                           "<html>It burns</html>",
                           "<hr>",
                           "<table  width='75%'>",
                           "<tr><td width='28%'>",
                           LNGCALLER + ":</td><td width='72%'>Cal</td>",
                           "<tr><td width='28%'>",
                           LNGEMAIL + ":</td><td width='72%'><a href='mailto:c@x'>c@x</td>",
                           "<tr><td width='28%'>",
                           LNGPHONE + ":</td><td width='72%'></td>",
                           "<tr><td width='28%'>",
                           LNGCALLERCATEGORY + ":</td><td width='72%'></td>",
                           "</table>",
                           "</body>",
                           "</html>",
                           ""}));
}

TEST_F(TicketOutputTest, SpeaksTheLanguageInForce) {
    const QString english = m_ticket.ToHTML(1);
    LoadLanguages(2);
    EXPECT_NE(m_ticket.ToHTML(1), english);
    EXPECT_TRUE(m_ticket.ToHTML(1).contains(LNGRESPONSIBLE.text()));
}

} // namespace
