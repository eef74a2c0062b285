#include "platform/window/askers.h"
#include "platform/window/window.h"
#include "support/answers.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

namespace {

using window::Buttons;
using window::Icon;

window::Sheet logon() {
    using Kind = window::Field::Kind;
    window::Sheet sheet;
    sheet.name = "frmLogon";
    sheet.title = "Logon";
    sheet.fields = {{Kind::Text, "txtServer", "Server", "first", {}, {}},
                    {Kind::Check, "chkTrusted", "Trusted", "1", {}, {}},
                    {Kind::Password, "txtPassword", "Password", "secret", {}, "chkTrusted"},
                    {Kind::Option, "optOne", "One", "1", {}, {}},
                    {Kind::Option, "optTwo", "Two", "0", {}, {}}};
    sheet.buttons = {{"cmdOK", "OK"}, {"cmdCancel", "Cancel"}};
    return sheet;
}

/// Nobody is there: what the questions say on standard error.
class NobodyThere : public testing::Test {
  protected:
    QString toldBy(const std::function<void()> &step) {
        testing::internal::CaptureStderr();
        step();
        return QString::fromStdString(testing::internal::GetCapturedStderr());
    }
};

TEST_F(NobodyThere, EachQuestionGetsItsCautiousAnswerAndIsTold) {
    struct Case {
        Buttons buttons;
        std::optional<window::Answer> given;
        window::Answer answer;
        const char *name;
    };
    const std::vector<Case> cases = {
        {Buttons::OK, {}, window::OK, "OK"},
        {Buttons::OKCancel, {}, window::Cancel, "Cancel"},
        {Buttons::YesNo, {}, window::No, "No"},
        {Buttons::YesNoCancel, {}, window::Cancel, "Cancel"},
        {Buttons::RetryCancel, {}, window::Cancel, "Cancel"},
        {Buttons::YesNo, window::Yes, window::Yes, "Yes"},
    };
    for (const Case &c : cases) {
        window::Answer answer{};
        const QString told = toldBy([&] {
            answer = window::msgBox("Open\r\nit\x1b[2J\t\u009bnow?", c.buttons, Icon::Question, "Title", c.given);
        });
        EXPECT_EQ(answer, c.answer) << c.name;
        EXPECT_EQ(told, QString("[Title] Open\nit?[2J\t?now?\n[Title] answered: %1\n").arg(c.name));
    }
}

TEST_F(NobodyThere, ADialogIsClosedAndItsPasswordIsNotTold) {
    window::Sheet sheet = logon();
    const QString told = toldBy([&] { EXPECT_EQ(window::showSheet(sheet), ""); });
    EXPECT_TRUE(told.contains("txtServer Server: first")) << told.toStdString();
    EXPECT_FALSE(told.contains("secret"));
    EXPECT_TRUE(told.contains("answered: closed"));
    sheet.cautious = "cmdOK";
    EXPECT_TRUE(toldBy([&] { EXPECT_EQ(window::showSheet(sheet), "cmdOK"); }).contains("answered: cmdOK"));
}

TEST(ScriptedAnswers, FailTheTestWhenTheyDoNotFit) {
    const std::pair<std::function<void(support::Answers &)>, const char *> cases[] = {
        {[](auto &) { window::msgBox("surprise", Buttons::OK, Icon::None, ""); }, "Unexpected question: surprise"},
        {[](auto &answers) { answers.expect("never"); }, "was not asked: never"},
        {[](auto &) {
             window::Sheet sheet = logon();
             window::showSheet(sheet);
         },
         "Unexpected dialog: "}};
    for (const auto &[step, told] : cases)
        EXPECT_NONFATAL_FAILURE(
            {
                support::Answers answers;
                step(answers);
            },
            told);
}

/// A person at the display, who acts while the dialog is open.
class APerson : public testing::Test {
  protected:
    template <class T>
    static T *find(const QString &name) {
        T *widget = QApplication::activeModalWidget()->findChild<T *>(name);
        if (widget == nullptr)
            ADD_FAILURE() << "There is no " << name.toStdString();
        return widget;
    }
    static void click(const QString &name) {
        auto *button = find<QAbstractButton>(name);
        if (button != nullptr && !button->isEnabled())
            ADD_FAILURE() << name.toStdString() << " is disabled";
        if (button != nullptr)
            button->click();
    }
    static void press(int key, Qt::KeyboardModifiers with) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(QApplication::activeModalWidget()));
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), with);
    }
    static void whileOpen(const std::function<void()> &step) { QTimer::singleShot(0, qApp, step); }

    std::unique_ptr<window::Asker> asker = window::makeWidgetAsker();
};

TEST_F(APerson, AnswersByClickOrByKey) {
    struct Case {
        Buttons buttons;
        const char *name;
        /// Clicked where there is no key.
        const char *button;
        int key;
        Qt::KeyboardModifiers with;
        window::Answer answer;
    };
    constexpr auto none = Qt::NoModifier;
    const std::vector<Case> cases = {
        {Buttons::OKCancel, "click", "cmdCancel", 0, none, window::Cancel},
        {Buttons::YesNoCancel, "click", "cmdNo", 0, none, window::No},
        {Buttons::RetryCancel, "click", "cmdRetry", 0, none, window::Retry},
        {Buttons::OK, "Enter", "", Qt::Key_Return, none, window::OK},
        {Buttons::OK, "Escape", "", Qt::Key_Escape, none, window::OK},
        {Buttons::OKCancel, "Enter on the keypad", "", Qt::Key_Enter, Qt::KeypadModifier, window::OK},
        {Buttons::OKCancel, "Escape", "", Qt::Key_Escape, none, window::Cancel},
        {Buttons::RetryCancel, "Escape", "", Qt::Key_Escape, none, window::Cancel},
        {Buttons::YesNoCancel, "Escape", "", Qt::Key_Escape, none, window::Cancel},
        {Buttons::YesNo, "Enter", "", Qt::Key_Return, none, window::Yes},
        {Buttons::YesNo, "Escape", "", Qt::Key_Escape, none, window::No},
        {Buttons::YesNo, "the letter alone", "", Qt::Key_N, none, window::No},
        {Buttons::YesNo, "the letter", "", Qt::Key_N, Qt::AltModifier, window::No},
        {Buttons::YesNo, "a letter of no button", "cmdYes", Qt::Key_X, none, window::Yes},
        {Buttons::YesNo, "the blank on the next", "", Qt::Key_Tab, none, window::No},
    };
    for (const Case &c : cases) {
        whileOpen([&] {
            if (c.key != 0)
                press(c.key, c.with);
            if (c.key == Qt::Key_Tab)
                press(Qt::Key_Space, none);
            if (*c.button != '\0')
                click(c.button);
        });
        // The cautious answer is for nobody: a person who is there refuses by Escape.
        EXPECT_EQ(asker->ask({"Really?", c.buttons, Icon::Question, "Title", window::Abort}), c.answer)
            << c.name << " " << static_cast<int>(c.buttons);
    }
}

TEST_F(APerson, FindsTheQuestionInFrontOfTheOtherWindows) {
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    whileOpen([&] {
        QWidget *box = QApplication::activeModalWidget();
        EXPECT_TRUE(box->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        EXPECT_TRUE(QTest::qWaitForWindowActive(box));
        click("cmdOK");
    });
    EXPECT_EQ(asker->ask({"Seen?", Buttons::OK, Icon::None, "Title", window::OK}), window::OK);
}

TEST_F(APerson, ReadsAnyTextWholeAndAsItStands) {
    const QScreen *screen = QGuiApplication::primaryScreen();
    const std::vector<std::pair<QString, bool>> cases = {
        {"<b>Really?</b>", false},
        {QString("Ο τύπος προβλήματος που καταχωρίσατε δεν υπάρχει ακόμη! ").repeated(8), false},
        {"\\\\Public Folders\\" + QString(1500, u'x'), false},
        {QString("line\r\n").repeated(500), true},
    };
    for (const auto &[text, scrolls] : cases) {
        whileOpen([&] {
            QWidget *box = QApplication::activeModalWidget();
            EXPECT_EQ(box->objectName(), "messageBox");
            EXPECT_EQ(box->windowTitle(), "Title");
            EXPECT_LE(box->width(), screen->availableGeometry().width());
            EXPECT_LE(box->height(), screen->availableGeometry().height());
            EXPECT_FALSE(find<QLabel>("icon")->pixmap().isNull());
            auto *shown = find<QTextEdit>("text");
            EXPECT_EQ(shown->toPlainText(), QString(text).replace("\r\n", "\n"));
            EXPECT_EQ(shown->horizontalScrollBar()->maximum(), 0);
            EXPECT_EQ(shown->verticalScrollBar()->maximum() > 0, scrolls);
            shown->selectAll();
            EXPECT_TRUE(shown->textCursor().hasSelection());
            click("cmdOK");
        });
        EXPECT_EQ(asker->ask({text, Buttons::OK, Icon::Critical, "Title", window::OK}), window::OK);
    }
}

TEST_F(APerson, IsTakenForCautiousWhenTheProcessEndsUnderTheBox) {
    whileOpen([] { QApplication::activeModalWidget()->hide(); });
    EXPECT_EQ(asker->ask({"Really?", Buttons::YesNo, Icon::None, "Title", window::Yes}), window::Yes);
    whileOpen([] { QApplication::activeModalWidget()->close(); });
    EXPECT_EQ(asker->ask({"Really?", Buttons::YesNo, Icon::None, "Title", window::Yes}), window::No);
}

TEST_F(APerson, FillsInADialog) {
    window::Sheet sheet = logon();
    whileOpen([] {
        EXPECT_EQ(QApplication::activeModalWidget()->windowTitle(), "Logon");
        EXPECT_FALSE(find<QLineEdit>("txtPassword")->isEnabled());
        EXPECT_EQ(find<QLineEdit>("txtPassword")->echoMode(), QLineEdit::Password);
        click("chkTrusted");
        EXPECT_TRUE(find<QLineEdit>("txtPassword")->isEnabled());
        find<QLineEdit>("txtPassword")->setText("a;b");
        find<QLineEdit>("txtServer")->setText("second");
        click("optTwo");
        click("cmdOK");
    });
    EXPECT_EQ(asker->show(sheet), "cmdOK");
    QStringList values;
    for (const window::Field &field : sheet.fields)
        values << field.value;
    EXPECT_EQ(values, (QStringList{"second", "0", "a;b", "0", "1"}));
    whileOpen([] { press(Qt::Key_Return, Qt::NoModifier); });
    EXPECT_EQ(asker->show(sheet), "cmdOK");
    whileOpen([] { press(Qt::Key_Escape, Qt::NoModifier); });
    EXPECT_EQ(asker->show(sheet), "");
}

TEST(Windows, AreBroughtForwardByTheirTitle) {
    QLabel label;
    label.setWindowTitle("A title");
    EXPECT_FALSE(window::activate("A title"));
    label.show();
    EXPECT_TRUE(window::activate("A title"));
    EXPECT_FALSE(window::activate("Another title"));
}

} // namespace
