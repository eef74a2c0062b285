/// The windows of this process as forms.
#pragma once

#include "platform/controls/form.h"

#include <QPointer>

class QWidget;

namespace window {

/// A top-level widget under the members of a form; its controls go by their object names. Any member fails with 91 once
/// the widget has gone.
class WidgetForm : public controls::Form {
  public:
    explicit WidgetForm(QWidget &widget);
    ~WidgetForm() override;

    [[nodiscard]] QString Caption() const override;
    [[nodiscard]] bool Visible() const override;
    void SetTopMost(bool topMost) override;
    void SetInTaskBar(bool shown) override;
    void SetFocus() override;
    [[nodiscard]] std::unique_ptr<controls::Control> Controls(const QString &name) const override;

  private:
    [[nodiscard]] QWidget &widget() const;
    void setFlag(Qt::WindowType flag, bool isOn);

    QPointer<QWidget> m_widget;
};

} // namespace window
