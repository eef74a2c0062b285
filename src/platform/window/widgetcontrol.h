/// The widgets of a dialog of this process as controls.
#pragma once

#include "platform/controls/control.h"

#include <QPointer>

class QAbstractItemModel;
class QWidget;

namespace window {

/// A QComboBox, QListWidget, QLineEdit, QPlainTextEdit or an abstract button under the members of a control. Any member
/// fails with 91 once the widget has gone.
class WidgetControl : public controls::Control {
  public:
    explicit WidgetControl(QWidget &widget);
    ~WidgetControl() override;

    [[nodiscard]] QString Text() const override;
    void SetText(const QString &text) override;
    /// Of a button whether it is ticked, of anything else the text.
    [[nodiscard]] ::Value Value() const override;
    void SetValue(const ::Value &value) override;
    void Clear() override;
    void AddItem(const QString &text) override;
    void SetItems(const QStringList &texts) override;
    [[nodiscard]] int ListCount() const override;
    [[nodiscard]] ::Value List(int row, int column = 0) const override;
    void SetList(int row, int column, const ::Value &value) override;
    [[nodiscard]] int ListIndex() const override;
    void SetListIndex(int row) override;
    [[nodiscard]] QRect place() const override;
    [[nodiscard]] qint32 BackColor() const override;
    void SetBackColor(qint32 color) override;

  private:
    template <class Widget>
    [[nodiscard]] Widget *as() const;
    [[nodiscard]] QWidget &widget() const;
    /// The rows of a combo or list box. Fails with 438 for any other widget.
    [[nodiscard]] QAbstractItemModel &rows() const;
    [[nodiscard]] QAbstractItemModel &rowsWith(int row) const;

    QPointer<QWidget> m_widget;
};

} // namespace window
