// Questions to the person at the display.

#include "platform/window/askers.h"
#include "platform/window/messagedialog.h"
#include "platform/window/sheetdialog.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace window {

namespace {

/// The machine's words on the buttons that each toolkit names by itself.
void useLanguageOfMachine() {
    if (qApp->findChild<QTranslator *>(QStringLiteral("machineWords")) != nullptr)
        return;
    auto *words = new QTranslator(qApp);
    words->setObjectName(QStringLiteral("machineWords"));
    if (words->load(QLocale::system(), QStringLiteral("qtbase"), QStringLiteral("_"),
                    QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(words);
}

class WidgetAsker : public Asker {
  public:
    Answer ask(const Question &question) override {
        useLanguageOfMachine();
        MessageDialog dialog(question);
        // Past `reject`, which is the person's.
        const OpenQuestion open([&dialog] { dialog.done(QDialog::Rejected); });
        return dialog.run();
    }

    QString show(Sheet &sheet) override {
        SheetDialog dialog(sheet);
        const OpenQuestion open([&dialog] { dialog.done(QDialog::Rejected); });
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
