#include "orvelle/dialogs/dialogs.h"

#include "orvelle/core/components.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/dialogs/formhelpers.h"
#include "orvelle/host/formcontrol.h"
#include "support/fakecontrol.h"
#include "support/fakeobject.h"
#include "support/program.h"

namespace {

/// A host, with or without an assistant.
class Dialogs : public support::Program {
  protected:
    void giveAssistant() { host->properties["Assistant"] = automation::ObjectPtr(assistant); }
    void answerWith(qint32 number) {
        assistant->calls["DoAlert"] = [number](const ValueList &) { return Value(number); };
    }

    std::shared_ptr<support::FakeObject> host = std::make_shared<support::FakeObject>("Application");
    std::shared_ptr<support::FakeObject> assistant = std::make_shared<support::FakeObject>("Assistant");
    host::Application oua{automation::ObjectPtr(host)};
};

TEST_F(Dialogs, TheAssistantIsAskedWhereThereIsOne) {
    giveAssistant();
    answerWith(6);
    subAssistantMessage(oua, "told");
    EXPECT_EQ(fncAssistantYesNo(oua, "Open?", 4), 6);
    subAssistantWorking(oua);
    const QString title = strProgramTitle;
    EXPECT_EQ(assistant->log,
              (QStringList{"Visible=True", "DoAlert(" + title + ", told, 0, 4, 0, -1, False)", "Visible=True",
                           "DoAlert(" + title + ", Open?, 4, 2, 0, -1, False)", "Visible=True", "Animation=25"}));
    EXPECT_EQ(fncLastStep(), "Showing that the Assistant is working");
}

TEST_F(Dialogs, AMessageBoxTakesItsPlace) {
    using window::Buttons;
    using window::Icon;
    answers.expect("told");
    answers.expect("Open?", window::Yes);
    subAssistantMessage(oua, "told");
    EXPECT_EQ(fncAssistantYesNo(oua, "Open?", 4), 6);
    for (int mail = 0; mail < 2; ++mail) {
        subTrace("another step");
        subAssistantWorking(oua);
        EXPECT_EQ(fncLastStep(), "Showing that the Assistant is working") << mail;
    }
    const std::vector<std::pair<Buttons, Icon>> expected = {{Buttons::OK, Icon::Information},
                                                            {Buttons::YesNo, Icon::None}};
    for (qsizetype i = 0; i < answers.asked().size(); ++i) {
        const window::Question &question = answers.asked().at(i);
        EXPECT_EQ(question.title, strProgramTitle);
        EXPECT_EQ(std::pair(question.buttons, question.icon), expected.at(static_cast<std::size_t>(i)));
    }
}

TEST_F(Dialogs, AMessageBoxAlsoTakesThePlaceOfAnAssistantThatFails) {
    giveAssistant();
    assistant->failing = QStringList{"DoAlert"};
    answers.expect("Open?", window::No);
    EXPECT_EQ(fncAssistantYesNo(oua, "Open?", 4), 7);
    EXPECT_EQ(fncLastStep(), "Creating Assistant to display message Open?");
    // Without a host a question is asked, and a message is not shown.
    subAssistantMessage(nullptr, "told");
    answers.expect("Open?", window::Yes);
    EXPECT_EQ(fncAssistantYesNo(nullptr, "Open?", 4), 6);
}

/// The host is another process, whose window the shell can't reach; and nothing about it may keep a message back.
TEST_F(Dialogs, TheHostsWindowIsBroughtToTheFrontBeforeAMessage) {
    const auto window = std::make_shared<support::FakeObject>("Explorer");
    host->properties["ActiveWindow"] = automation::ObjectPtr(window);
    window->properties["Caption"] = "Inbox";
    subAssistantWorking(oua);
    EXPECT_EQ(window->log, QStringList{"Activate()"});
    for (const char *failing : {"", "Activate", "Caption"}) {
        window->log.clear();
        window->failing = QStringList{failing};
        answers.expect("told");
        subAssistantMessage(oua, "told");
        EXPECT_EQ(window->log, *failing == '\0' ? QStringList{"Activate()"} : QStringList()) << failing;
    }
    host->properties["ActiveWindow"] = Value::nothing();
    answers.expect("told");
    subAssistantMessage(oua, "told");
}

TEST_F(Dialogs, TheBoxGivesItsAnswerAndItsCheck) {
    struct Case {
        QString button;
        QString check;
        qint16 result;
        qint16 checked;
    };
    const std::vector<Case> cases = {
        {"cmdOK", "1", 1, 1}, {"cmdOK", "0", 1, 0}, {"cmdCancel", "1", 0, 1}, {"", "0", 0, 0}};
    for (const Case &c : cases) {
        answers.expectSheet("frmMessageBox", c.button, {{"chkCheckBox", c.check}});
        frmMessageBox frm;
        frm.lblMessage = "Add it?";
        frm.Show();
        EXPECT_EQ(frm.fncResult(), c.result);
        EXPECT_EQ(frm.chkCheckBox, c.checked);
    }
    const window::Sheet sheet = answers.shown().first();
    EXPECT_EQ(sheet.title, strProgramTitle);
    EXPECT_EQ(sheet.field("lblMessage")->caption, "Add it?");
    EXPECT_EQ(sheet.cautious, "cmdCancel");
    EXPECT_TRUE(sheet.topMost);
}

TEST_F(Dialogs, AControlTakesTheColourAtItsCentreAndKeepsItsOwnOtherwise) {
    struct Surface : controls::Pixels {
        std::optional<qint32> GetPixel(qint32 x, qint32 y) const override {
            if (fails)
                throw Failure(failures::unspecified);
            return QPoint(x, y) == QPoint(25, 40) ? color : std::optional<qint32>(0);
        }
        std::optional<qint32> color;
        bool fails = false;
    };
    struct Case {
        std::optional<qint32> surface;
        bool fails;
        qint32 color;
    };
    for (const Case &c : std::vector<Case>{{0x00FF00, false, 0x00FF00}, {{}, false, 5}, {7, true, 5}}) {
        Surface surface;
        surface.color = c.surface;
        surface.fails = c.fails;
        FakeControl box;
        subApplyBackColorToControl(surface, box);
        EXPECT_EQ(box.BackColor(), c.color);
    }
}

TEST_F(Dialogs, AFormIsShownInTheTaskbarAndOnlyAVisibleOneTakesTheFocus) {
    struct Window : controls::Form {
        QString Caption() const override { return "Caption"; }
        bool Visible() const override { return visible; }
        void SetTopMost(bool value) override { log << QString("top %1").arg(value); }
        void SetInTaskBar(bool value) override { log << QString("taskbar %1").arg(value); }
        void SetFocus() override { log << "focus"; }
        std::unique_ptr<controls::Control> Controls(const QString &) const override { return nullptr; }
        bool visible = false;
        QStringList log;
    };
    Window frm;
    subEnsureVisibleTaskBar(frm, "");
    frm.visible = true;
    subEnsureVisibleTaskBar(frm, "Title");
    clsAlwaysOnTop::MakeTopMost(frm);
    clsAlwaysOnTop::MakeNormal(frm);
    EXPECT_EQ(frm.log, (QStringList{"taskbar 1", "taskbar 1", "focus", "top 1", "top 0"}));
}

TEST_F(Dialogs, AComboKeepsItsValue) {
    const auto dic = fncCreateDic<QString>();
    dic->Add("b", "1");
    dic->Add("a", "2");
    FakeControl combo(FakeControl::Kind::Combo, "not in the list");
    combo.AddItem("old");
    subFillCombo(combo, dic);
    EXPECT_EQ(combo.rows(), (QStringList{"b", "a"}));
    EXPECT_EQ(combo.Text(), "not in the list");
}

TEST_F(Dialogs, AComboOfTheHostIsFilledInOneQuestion) {
    const auto dic = fncCreateDic<QString>();
    for (int i = 0; i < 5000; ++i)
        dic->Add(QString("Caller %1").arg(i), "");
    const auto fake = std::make_shared<support::FakeObject>("ComboBox");
    fake->properties["Value"] = "Caller 7";
    fake->calls["Clear"] = [](const ValueList &) { return Value(); };
    host::FormControl combo(automation::ObjectPtr{fake});
    subFillCombo(combo, dic);
    EXPECT_EQ(fake->log, (QStringList{"Clear()", "List=(5000 values)", "Value=Caller 7"}));
    EXPECT_EQ(fake->properties["List"].array().last(), Value("Caller 4999"));
}

} // namespace
