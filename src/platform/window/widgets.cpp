// Questions to the person at the display.

#include "platform/window/askers.h"
#include "platform/window/sheetdialog.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace window {

namespace {

struct ButtonOf {
    QMessageBox::StandardButton button;
    Answer answer;
    const char *name;
};
constexpr std::array<ButtonOf, 5> everyButton = {{{QMessageBox::Ok, OK, "cmdOK"},
                                                  {QMessageBox::Yes, Yes, "cmdYes"},
                                                  {QMessageBox::No, No, "cmdNo"},
                                                  {QMessageBox::Retry, Retry, "cmdRetry"},
                                                  {QMessageBox::Cancel, Cancel, "cmdCancel"}}};

QMessageBox::StandardButtons buttonsOf(Buttons buttons) {
    switch (buttons) {
    case Buttons::OK:
        return QMessageBox::Ok;
    case Buttons::OKCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Buttons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case Buttons::RetryCancel:
        return QMessageBox::Retry | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon iconOf(Icon icon) {
    switch (icon) {
    case Icon::None:
        return QMessageBox::NoIcon;
    case Icon::Critical:
        return QMessageBox::Critical;
    case Icon::Question:
        return QMessageBox::Question;
    case Icon::Exclamation:
        return QMessageBox::Warning;
    case Icon::Information:
        return QMessageBox::Information;
    }
    return QMessageBox::NoIcon;
}

class WidgetAsker : public Asker {
  public:
    Answer ask(const Question &question) override {
        QMessageBox box;
        box.setObjectName(QStringLiteral("messageBox"));
        box.setWindowTitle(question.title);
        // A text may come from a mail: it is never taken for markup.
        box.setTextFormat(Qt::PlainText);
        box.setText(question.text);
        box.setIcon(iconOf(question.icon));
        box.setStandardButtons(buttonsOf(question.buttons));
        for (const ButtonOf &each : everyButton) {
            if (QAbstractButton *button = box.button(each.button))
                button->setObjectName(QString::fromLatin1(each.name));
        }
        const int pressed = box.exec();
        const auto *found = std::find_if(everyButton.begin(), everyButton.end(),
                                         [&](const ButtonOf &each) { return each.button == pressed; });
        return found == everyButton.end() ? question.cautious : found->answer;
    }

    QString show(Sheet &sheet) override {
        SheetDialog dialog(sheet);
        return dialog.run();
    }
};

} // namespace

std::unique_ptr<Asker> makeWidgetAsker() { return std::make_unique<WidgetAsker>(); }

bool isUnattended() {
    if (qEnvironmentVariable("ORVELLE_UNATTENDED") == QStringLiteral("1"))
        return true;
    if (qobject_cast<QApplication *>(QCoreApplication::instance()) == nullptr)
        return true;
    const QString platform = QGuiApplication::platformName();
    return platform == QStringLiteral("offscreen") || platform == QStringLiteral("minimal");
}

bool activate(const QString &title) {
    if (qobject_cast<QApplication *>(QCoreApplication::instance()) == nullptr)
        return false;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->windowTitle() == title) {
            widget->raise();
            widget->activateWindow();
            return true;
        }
    }
    return false;
}

} // namespace window
