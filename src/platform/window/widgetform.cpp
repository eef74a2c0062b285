#include "platform/window/widgetform.h"

#include "platform/value/failure.h"
#include "platform/window/widgetcontrol.h"

#include <QWidget>

namespace window {

WidgetForm::WidgetForm(QWidget &widget) : m_widget(&widget) {}
WidgetForm::~WidgetForm() = default;

QWidget &WidgetForm::widget() const {
    if (!m_widget)
        throw Failure(failures::objectNotSet);
    return *m_widget;
}

/// A change of the flags hides a window, and whoever asked for it did not.
void WidgetForm::setFlag(Qt::WindowType flag, bool isOn) {
    if (widget().windowFlags().testFlag(flag) == isOn)
        return;
    const bool isShown = widget().isVisible();
    widget().setWindowFlag(flag, isOn);
    widget().setVisible(isShown);
}

QString WidgetForm::Caption() const { return widget().windowTitle(); }
bool WidgetForm::Visible() const { return widget().isVisible(); }
void WidgetForm::SetTopMost(bool topMost) { setFlag(Qt::WindowStaysOnTopHint, topMost); }

/// The window manager leaves tools and dialogs of other windows out of the taskbar, ordinary windows never.
void WidgetForm::SetInTaskBar(bool shown) {
    const Qt::WindowType type = shown ? Qt::Window : Qt::Tool;
    if (widget().windowType() == type)
        return;
    const bool isShown = widget().isVisible();
    widget().setWindowFlags((widget().windowFlags() & ~Qt::WindowType_Mask) | type);
    widget().setVisible(isShown);
}

void WidgetForm::SetFocus() {
    widget().raise();
    widget().activateWindow();
    widget().setFocus();
}

std::unique_ptr<controls::Control> WidgetForm::Controls(const QString &name) const {
    auto *control = widget().findChild<QWidget *>(name);
    return control ? std::make_unique<WidgetControl>(*control) : nullptr;
}

} // namespace window
