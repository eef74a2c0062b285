/// A question as a dialog of widgets.
#pragma once

#include "platform/window/window.h"

#include <QDialog>
#include <QDialogButtonBox>

namespace window {

/// Shows a text with an icon and a row of buttons. The first button is the one that Enter presses; a button's
/// underlined letter presses it, with Alt or alone; Escape and closing give the refusing answer, which is the only
/// button where there is no other. The text is never taken for markup, since it may come from a mail; it can be marked
/// and copied, and scrolls where it is longer than the screen.
class MessageDialog : public QDialog {
  public:
    explicit MessageDialog(const Question &question);

    /// Waits for the person. A dialog that the end of the process closes gives the cautious answer.
    Answer run();

    void reject() override;

  protected:
    void keyPressEvent(QKeyEvent *event) override;

  private:
    [[nodiscard]] QWidget *makeIcon() const;
    [[nodiscard]] QWidget *makeText() const;
    QWidget *makeButtons();

    const Question m_question;
    QDialogButtonBox *m_buttons = nullptr;
    std::optional<Answer> m_pressed;
};

} // namespace window
