// Connection strings come from a file that people edit: anything may stand there.

#include "platform/ado/connectionstring.h"
#include "platform/ado/engine.h"

#include <random>

namespace {

using ado::ConnectionPieces;

struct Reading {
    const char *text;
    const char *key;
    const char *value;
};

TEST(ConnectionString, IsReadPieceByPiece) {
    const Reading cases[] = {
        {"Provider=P;Data Source=C:\\a b\\x.mdb", "data source", "C:\\a b\\x.mdb"},
        {" ; ;Provider = P ; ", "PROVIDER", "P"},
        {"Provider=P;Provider=Q;A=1;a=2", "provider", "P"},
        {"A=1;a=2", "A", "2"},
        {"Password=;User ID=", "Password", ""},
        {"A=\"x;y=\"\"z\"\"\";B=1", "A", "x;y=\"z\""},
        {"A='it''s' ;B=1", "A", "it's"},
        {"A=it's;B=1", "A", "it's"},
        {"A==B=1", "A=B", "1"},
        {"A=x=y", "A", "x=y"},
        {"", "A", ""},
    };
    for (const Reading &each : cases)
        EXPECT_EQ(ConnectionPieces::parse(each.text).value(each.key), each.value) << each.text;
}

TEST(ConnectionString, SaysWhatIsWrong) {
    for (const QString &bad : {QString("Provider"), QString("=x"), QString("A=\"x"), QString("A='x'y"),
                               QString("A=1;B"), QString(ConnectionPieces::longest + 1, u';')})
        EXPECT_EQ(failureOf([&] { ConnectionPieces::parse(bad); }), ado::badConnectionString)
            << qPrintable(bad.left(20));
}

/// Texts made of the signs that mean something, and a few that do not.
QString scramble(std::mt19937 &random) {
    static const QString signs = QString::fromUtf8("=;'\" \t\\aZ\u00E9") + QChar(0) + QChar(0xD800);
    QString text;
    for (std::size_t length = random() % 40; length > 0; --length)
        text += signs[static_cast<qsizetype>(random() % static_cast<unsigned>(signs.size()))];
    return text;
}

TEST(ConnectionString, AnyTextIsReadOrRefusedAndAQuotedOneReadBack) {
    for (unsigned seed = 0; seed < 20000; ++seed) {
        std::mt19937 random(seed);
        const QString text = scramble(random);
        const auto failure = Attempt([&] { ConnectionPieces::parse(text); });
        ASSERT_TRUE(!failure || failure->number() == ado::badConnectionString) << seed;
        const ConnectionPieces pieces = ConnectionPieces::parse("A=" + ado::quotedConnectionValue(text) + ";B=last");
        ASSERT_EQ(pieces.value("A"), text) << seed;
        ASSERT_EQ(pieces.value("B"), "last") << seed;
    }
}

} // namespace
