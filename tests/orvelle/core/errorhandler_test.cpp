#include "orvelle/core/entry.h"
#include "orvelle/core/errorhandler.h"
#include "orvelle/core/trace.h"
#include "support/fakeobject.h"
#include "support/program.h"

#include <QRegularExpression>

namespace {

const QString title = strProgramTitle;

class Report : public support::Program {
  protected:
    void fail(const QString &description, qint32 number, qint32 line, const QString &procedure) {
        EXPECT_TRUE(support::endsProcess([&] { subErrorHandler(description, number, line, procedure); }));
    }
    /// A host whose new mails are this mail.
    void startHost() {
        host->properties["Version"] = "16.0.1";
        host->calls["CreateItem"] = [this](const ValueList &) { return Value(automation::ObjectPtr(mail)); };
        ouaOutlook = host::Application(automation::ObjectPtr(host));
    }

    std::shared_ptr<support::FakeObject> host = std::make_shared<support::FakeObject>("Application");
    std::shared_ptr<support::FakeObject> mail = std::make_shared<support::FakeObject>("MailItem");
};

TEST_F(Report, ReadsInFullAndOnNoNothingIsMailed) {
    startHost();
    subTrace("Opening the folder\r\nCheck that it is there");
    answers.expect("There has been an error", window::No);
    fail("Object variable not set", 91, 120, "cSettings.GetSettings");
    ASSERT_EQ(answers.asked().size(), 1);
    const window::Question question = answers.asked().first();
    EXPECT_EQ(question.text, "There has been an error in this application. " + title + " (" + fncOSName() + ")\r\n" +
                                 QString(70, u'-') +
                                 "\r\n\r\n"
                                 "This error has occured: :\r\n"
                                 "Opening the folder\r\nCheck that it is there\r\n\r\n"
                                 "The system error message was: :\r\n"
                                 "Object variable not set\r\n#91\r\n\r\n"
                                 "Sub routine : cSettings.GetSettings \r\n"
                                 "Error on line: 120\r\n\r\n"
                                 "Would you like to send an e-mail with an error report??");
    EXPECT_EQ(question.buttons, window::Buttons::YesNo);
    EXPECT_EQ(question.icon, window::Icon::None);
    EXPECT_EQ(question.title, title);
    EXPECT_EQ(question.cautious, window::No);
    EXPECT_TRUE(host->log.isEmpty());
    EXPECT_EQ(releases, 1);
}

TEST_F(Report, NamesThePlaceOfItsHandler) {
    answers.expect("Sub routine : subReadPhrases ", window::No);
    const auto guarded = [] {
        try {
            throw Failure(failures::typeMismatch);
        } catch (const Failure &failure) {
            subErrorHandler(failure, "subReadPhrases");
        }
    };
    const qint32 line = __LINE__ - 3;
    EXPECT_TRUE(support::endsProcess(guarded));
    EXPECT_TRUE(answers.asked().first().text.contains(QString("Error on line: %1\r\n").arg(line)));
    EXPECT_TRUE(answers.asked().first().text.contains("Type mismatch\r\n#13\r\n"));
}

TEST_F(Report, ASecondFailureUnderTheFirstEndsWithoutADialog) {
    answers.expectDuring(
        "There has been an error",
        [&] {
            enterProgram([] { throw Failure(failures::overflow); });
            // Nothing is released while the first failure's step is still there.
            EXPECT_EQ(releases, 0);
            enterProgram([] { ADD_FAILURE() << "a program that is to end was entered"; });
        },
        window::No);
    enterProgram([] { throw Failure(failures::objectNotSet); });
    EXPECT_EQ(answers.asked().size(), 1);
    EXPECT_EQ(releases, 1);
    EXPECT_EQ(ends, 1);
}

TEST_F(Report, GoesIntoAMailThatIsShown) {
    startHost();
    subTrace("A step");
    answers.expect("There has been an error", window::Yes);
    fail("Some text", 5, 7, "Main");
    const QString report = "This error has occured: :\r\nA step\r\n\r\nThe system error message was: :\r\nSome "
                           "text\r\n#5\r\n\r\nSub routine : Main \r\nError on line: 7\r\nOutlook Version: 16.0.1\r\n";
    EXPECT_EQ(mail->log,
              (QStringList{"To=support@orvelle.example", "Subject=Error in " + title + " 9.2.402 (" + fncOSName() + ")",
                           "Body=" + report, "Save()", "Display()"}));
    EXPECT_EQ(host->log, QStringList{"CreateItem(0)"});
    EXPECT_EQ(releases, 1);
}

TEST_F(Report, StartsTheHostForTheMailWhereItIsGone) {
    QList<qint32> started;
    processHooks->subStartOutlook = [&](qint32 folderType) {
        started << folderType;
        startHost();
    };
    answers.expect("There has been an error", window::Yes);
    fail("Some text", 5, 7, "Main");
    EXPECT_EQ(started, QList<qint32>{6});
    EXPECT_EQ(mail->log.last(), "Display()");
}

TEST_F(Report, SaysWhenTheMailCannotBeMadeAndEndsQuietlyWithoutAHost) {
    struct Case {
        const char *name;
        /// What the host refuses.
        QString failing;
        /// What the mail has taken all the same.
        QStringList done;
        bool isTold;
        /// Null where there is a host already.
        std::function<void(qint32)> startOutlook;
    };
    const std::vector<Case> cases = {
        {"not saved", "Save", {"To", "Subject", "Body", "Display"}, true, {}},
        {"not addressed", "To", {"Subject", "Body", "Save", "Display"}, true, {}},
        {"no mail", "CreateItem", {}, true, {}},
        {"a failure inside", "Version", {}, false, {}},
        {"no host", "", {}, false, [](qint32) {}},
        {"the host's start ends", "", {}, false, [](qint32) { subQuit(); }},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        support::inAnotherCopy([&] {
            if (!c.startOutlook)
                startHost();
            processHooks->subStartOutlook = c.startOutlook;
            mail->failing = host->failing = QStringList{c.failing};
            mail->log.clear();
            support::Answers answered;
            answered.expect("There has been an error", window::Yes);
            if (c.isTold)
                answered.expect("Failed to send error email using MS Outlook!");
            fail("Some text", 5, 7, "Main");
            EXPECT_EQ(answered.asked().last().icon, c.isTold ? window::Icon::Critical : window::Icon::None);
            QStringList names;
            for (const QString &entry : mail->log)
                names << entry.left(entry.indexOf(QRegularExpression("[=(]")));
            EXPECT_EQ(names, c.done);
        });
    }
}

TEST_F(Report, StandsInFullOnStandardErrorWhereNobodyIs) {
    window::asker = nullptr;
    subTrace("The last step");
    testing::internal::CaptureStderr();
    fail("Some text", 5, 7, "Main");
    const std::string told = testing::internal::GetCapturedStderr();
    for (const char *part :
         {"The last step", "Some text", "#5", "Sub routine : Main", "Error on line: 7", "answered: No"})
        EXPECT_NE(told.find(part), std::string::npos) << part;
}

} // namespace
