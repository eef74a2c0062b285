// Which engine a connection string reaches: one of those that the program has added, and no other.

#include "platform/ado/enginekinds.h"
#include "platform/ado/engines.h"
#include "platform/value/processlocal.h"

namespace {

struct EnginesTest : ::testing::Test {
    static qint32 openingFails(const QString &text) {
        ado::Connection connection;
        connection.SetConnectionString(text);
        const qint32 number = failureOf([&] { connection.Open(); });
        EXPECT_FALSE(connection.IsOpen());
        EXPECT_EQ(failureOf([&] { connection.Close(); }), ado::objectClosed);
        return number;
    }

    ProgramCopy copy;
    ProgramCopy::Scope scope{copy};
};

TEST_F(EnginesTest, TheProviderPicksOne) {
    for (const EngineKind &kind : engineKinds()) {
        EXPECT_EQ(openingFails(QString("Provider=%1").arg(kind.provider)), ado::providerNotFound) << kind.name;
        kind.add();
        kind.add();
        EXPECT_EQ(ado::engineNames().count(kind.provider), 1) << kind.name;
    }
    const std::pair<const char *, qint32> cases[] = {
        {"Provider=Nobody.1;Data Source=x", ado::providerNotFound},
        {"Data Source=x", ado::providerNotFound},
        {"Provider=Microsoft.Jet.OLEDB.4.0", ado::badConnectionString},
        {"Provider=microsoft.jet.oledb.4.0;Data Source=/no/such/file.mdb", failures::unspecified},
        {"Provider=SQLOLEDB.1;Data Source=server;Initial Catalog=x", failures::unspecified},
        {"", ado::providerNotFound},
    };
    for (const auto &[text, number] : cases)
        EXPECT_EQ(openingFails(text), number) << text;
}

TEST_F(EnginesTest, AnAddedOneIsAskedWithEveryPieceAndTheTimeToWait) {
    // The name of a server's provider, for which there is a sentence of its own as long as nobody serves it.
    ado::addEngine("SQLOLEDB.1",
                   [](const ado::ConnectionPieces &pieces, int busySeconds) -> std::shared_ptr<ado::Provider> {
                       throw Failure(busySeconds, pieces.value("Data Source") + "/" + pieces.value("initial catalog"));
                   });
    ado::Connection connection;
    connection.SetConnectionString("provider=sqloledb.1;Data Source=here;Initial Catalog=tickets");
    connection.SetCommandTimeout(7);
    expectFailure([&] { connection.Open(); }, 7, {"here/tickets"});
}

} // namespace
