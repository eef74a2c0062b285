// Custom properties of an item, in every type, and texts too long for one of them.

#include "orvelle/session/properties.h"

#include "support/session.h"

namespace {

class Properties : public support::Session {
  protected:
    void SetUp() override {
        Session::SetUp();
        m_item = put(tickets(), "IPM.Post", "an item");
    }
    void TearDown() override {
        m_item = {};
        Session::TearDown();
    }
    [[nodiscard]] const host::Item &item() const { return m_item; }
    [[nodiscard]] bool has(const QString &name) const { return !m_item.UserProperties().Find(name).isNothing(); }

  private:
    host::Item m_item;
};

TEST_F(Properties, AreReadBackAsTheTypeTheyWereWrittenIn) {
    struct Case {
        qint32 type;
        Value written;
        Value read;
    };
    const DateTime day = DateTime::fromDate(2024, 3, 5);
    for (const Case &each : {
             Case{2, 7, qint16(7)},
             Case{2, "12", qint16(12)},
             Case{2, "no number", qint16(0)},
             Case{2, Value(Value::Null{}), qint16(0)},
             Case{7, day, day},
             Case{7, "3/5/2024", day},
             Case{8, "text", "text"},
             Case{8, 12, "12"},
             Case{11, true, true},
             Case{11, "False", false},
         }) {
        SCOPED_TRACE(each.written.kindName().toStdString() + " as " + std::to_string(each.type));
        subSetOutlookValue(item(), "P" + QString::number(each.type), each.written, each.type);
        EXPECT_EQ(fncGetOutlookValue(item(), "P" + QString::number(each.type), each.type), each.read);
    }
}

TEST_F(Properties, AMissingOneReadsAsItsDefault) {
    struct Case {
        qint32 type;
        Value otherwise;
        Value read;
    };
    for (const Case &each : {
             Case{2, Value(), qint16(0)},
             Case{2, 5, qint16(5)},
             Case{2, "x", qint16(0)},
             Case{2, 70000, qint16(0)},
             Case{7, DateTime::fromDate(2024, 3, 5), DateTime()},
             Case{8, Value(), ""},
             Case{8, "default", "default"},
             Case{11, Value(), false},
             Case{11, 1, true},
             Case{11, "x", Value()},
             Case{3, 1, Value()},
         })
        EXPECT_EQ(fncGetOutlookValue(item(), "Missing", each.type, each.otherwise), each.read)
            << each.type << " " << each.otherwise.kindName().toStdString();
    EXPECT_FALSE(has("Missing"));
}

TEST_F(Properties, ANoDateLeavesADateAsItWasButMakesAMissingOne) {
    const DateTime day = DateTime::fromDate(2024, 3, 5);
    subSetOutlookValue(item(), "Due", day, 7);
    subSetOutlookValue(item(), "Due", "some day", 7);
    EXPECT_EQ(fncGetOutlookValue(item(), "Due", 7), Value(day));
    subSetOutlookValue(item(), "Other", "some day", 7);
    EXPECT_TRUE(has("Other"));
}

TEST_F(Properties, AnEmptyTextCannotBeToldFromAMissingOne) {
    subSetOutlookValue(item(), "Text", "", 8);
    EXPECT_EQ(fncGetOutlookValue(item(), "Text", 8, "default"), Value("default"));
    EXPECT_EQ(fncGetOutlookValue(item(), "Text", 8), Value(""));
}

TEST_F(Properties, UnknownTypesAndNothingDoNothing) {
    subSetOutlookValue(item(), "Odd", 1, 4);
    EXPECT_FALSE(has("Odd"));
    subSetOutlookValue(host::Item(), "Odd", 1, 2);
    EXPECT_EQ(fncGetOutlookValue(host::Item(), "Odd", 8, "default"), Value("default"));
}

TEST_F(Properties, AWriteThatFailsIsReported) {
    answers.expect("subSetOutlookValue", window::No);
    EXPECT_TRUE(support::endsProcess([&] { subSetOutlookValue(item(), "Number", 40000, 2); }));
}

TEST_F(Properties, ALongTextIsStoredInPiecesAndReadBackWhole) {
    // Its length, and the highest number of a piece.
    const std::pair<qsizetype, int> cases[] = {{0, 0},    {499, 0},  {500, 0},  {501, 1},  {999, 1}, {1000, 1},
                                               {1400, 1}, {1500, 2}, {1600, 2}, {2500, 2}, {2501, 3}};
    for (const auto &[length, highest] : cases) {
        SCOPED_TRACE(length);
        const QString name = "Log" + QString::number(length) + "_";
        QString text;
        for (qsizetype i = 0; i < length; ++i)
            text += QChar(static_cast<char16_t>(u'a' + i % 26));
        subFixLongProperty(item(), text, name, false);
        EXPECT_EQ(property(item(), name + "Count"), QString::number(highest));
        for (int i = 0; i <= highest; ++i)
            EXPECT_EQ(property(item(), name + QString::number(i)), text.mid(i * 1000, 1000));
        EXPECT_FALSE(has(name + QString::number(highest + 1)));
        EXPECT_FALSE(has(name));
        EXPECT_EQ(fncGetLongProperty(item(), name), text);
    }
}

TEST_F(Properties, AShorterTextIsReadBackAlone) {
    subFixLongProperty(item(), QString(3000, 'x'), "Log", false);
    subFixLongProperty(item(), "short", "Log", false);
    EXPECT_EQ(fncGetLongProperty(item(), "Log"), "short");
    EXPECT_EQ(property(item(), "Log2").size(), 1000) << "the old pieces stay";
}

TEST_F(Properties, WithoutACountTheFirstPieceIsRead) {
    subSetOutlookValue(item(), "Log0", "first", 8);
    subSetOutlookValue(item(), "Log1", "second", 8);
    EXPECT_EQ(fncGetLongProperty(item(), "Log"), "first");
}

TEST_F(Properties, ALongWriteThatFailsHalfWayKeepsTheOldCount) {
    subFixLongProperty(item(), "short", "Log", false);
    const auto questions = std::make_shared<support::Counting::Questions>();
    int pieces = 0;
    questions->before = [&](const QString &question) {
        if (question == "UserProperty.Value=" && ++pieces == 3)
            throw Failure(failures::noDiskSpace);
    };
    answers.expect("Failed to save Log " + LNGCHECKPERM);
    subFixLongProperty(support::Counting::of(item().object(), questions), QString(4000, 'x'), "Log", false);
    EXPECT_EQ(property(item(), "Log1").size(), 1000);
    EXPECT_EQ(property(item(), "LogCount"), "0");
}

TEST_F(Properties, ALongWriteThatFailsIsToldUnlessSilent) {
    subFixLongProperty(host::Item(), "text", "Log", true);
    answers.expect("Failed to save Log " + LNGCHECKPERM);
    subFixLongProperty(host::Item(), "text", "Log", false);
}

} // namespace
