// What a mail costs beside its commits: how often the program waits for an answer of a host in another process.

#include "automation/remote.h"
#include "support/helpdesk.h"

namespace {

struct Road {
    const char *name;
    bool hasSubFolders;
    bool confirms;
    bool isReply;
    quint64 roundTrips;
};

/// The desk and the program meet at a socket, as two processes do.
class RoundTrips : public support::Helpdesk, public testing::WithParamInterface<Road> {
  protected:
    void SetUp() override {
        setSetting("EmailSubFolders", GetParam().hasSubFolders ? "1" : "0");
        setSetting("ConvertedEmailMessage", GetParam().confirms ? "Ticket [TICKETID] was made." : "");
        connectBySocket();
        start();
        // The first makes the folders.
        deliver({.subject = "The first"});
        ASSERT_EQ(subjects(tickets()).size(), 1);
    }

    /// The round trips from a mail's arrival to the end of its road.
    quint64 ofMail(const support::Mail &mail) {
        const quint64 before = client().roundTrips();
        deliver(mail);
        return client().roundTrips() - before;
    }
};

TEST_P(RoundTrips, AMailCostsSoMany) {
    const Road &road = GetParam();
    const QString subject = road.isReply ? "Re: {1}" : "The second";
    EXPECT_EQ(ofMail({.subject = subject, .html = "<html><body><p>noise</p></body></html>"}), road.roundTrips);
    EXPECT_EQ(subjects(tickets()).size(), road.isReply ? 1 : 2);
    EXPECT_EQ(outgoing().size(), !road.confirms ? 0 : road.isReply ? 1 : 2);
    EXPECT_EQ(subjects(intake()).size(), 1) << "the flag item alone";
}

INSTANTIATE_TEST_SUITE_P(Roads, RoundTrips,
                         testing::Values(Road{"Plain", false, false, false, 25},
                                         Road{"Confirmed", false, true, false, 32},
                                         Road{"SubFolders", true, false, false, 31},
                                         Road{"Full", true, true, false, 40}, Road{"Reply", true, true, true, 39}),
                         [](const auto &road) { return std::string(road.param.name); });

} // namespace
