/// The window that asks what a `Sheet` says: its text, a widget for each field, its buttons in a row.
#pragma once

#include "platform/window/window.h"

#include <QDialog>
#include <QWidget>

namespace window {

/// Shows one sheet and keeps its values up to date. REQUIRES: the sheet outlives the dialog.
class SheetDialog : public QDialog {
  public:
    explicit SheetDialog(Sheet &sheet);

    /// Waits for the person and gives the name of the button, empty when the dialog was closed otherwise.
    QString run();

  private:
    QWidget *makeControl(Field &field);
    QWidget *makeButtons();
    void bindEnabling();

    Sheet &m_sheet;
    QString m_pressed;
};

} // namespace window
