// The digest and the pages of a ticket.

#include "orvelle/reference/program.h"
#include "orvelle/ticket/ticketfixture.h"

namespace {

class TicketOutputTest : public ProgramTest {
  protected:
    TicketOutputTest() {
        subCreateSettings();
        m_ticket.Subject = "Smoke";
        m_ticket.TicketID = "12";
        m_ticket.HTMLDescription = "<html>It burns</html>";
        m_ticket.Caller->FullName = "Cal";
    }
    static void setTemplate(const QString &name, const QString &page) {
        objSettings->OtherSettings->SetValue(name, page);
    }

    cTicket m_ticket = fullTicket();
};

TEST_F(TicketOutputTest, WritesTheDigest) {
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

TEST_F(TicketOutputTest, FillsATemplate) {
    // Every field, the same one twice, what is none, and blanks around.
    const std::pair<QString, QString> cases[] = {
        {"[TICKETID]|[SUBJECT]|[RESPONSIBLE]|[PROBLEMTYPE]|[DESCRIPTION]|[CALLERNAME]|[CALLEREMAIL]|[CALLERPHONE]|"
         "[CALLERCATEGORY]|[STATUS]|[PRIORITY]",
         "12|Smoke|Ann|Printer|<html>It burns</html>|Cal|c@x|1|VIP|Open|2"},
        {"[SUBJECT] [SUBJECT]", "Smoke Smoke"},
        {"[DUE] [subject]", "[DUE] [subject]"},
        {"  [STATUS]  ", "  Open  "},
    };
    for (const auto &[page, filled] : cases) {
        setTemplate("EmailToCaller", page);
        EXPECT_EQ(m_ticket.ToHTML(1), filled);
    }
}

TEST_F(TicketOutputTest, FieldsThatAValueBringsInAreFilledByTheLaterOnes) {
    m_ticket.HTMLDescription = "[TICKETID][SUBJECT][PROBLEMTYPE][RESPONSIBLE][CALLERNAME][STATUS]";
    setTemplate("PrintOut", "[DESCRIPTION]");
    EXPECT_EQ(m_ticket.ToHTML(3), "[TICKETID][SUBJECT][PROBLEMTYPE]AnnCalOpen");
}

} // namespace
