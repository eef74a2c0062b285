/// The askers of the process itself.
#pragma once

#include "platform/window/window.h"

namespace window {

/// A question that waits for a person, known to its program copy while it lives, so that the copy's end can close it.
class OpenQuestion {
  public:
    explicit OpenQuestion(std::function<void()> close);
    ~OpenQuestion();
    OpenQuestion(const OpenQuestion &) = delete;
    OpenQuestion &operator=(const OpenQuestion &) = delete;

    void close() const { m_close(); }

  private:
    ProgramCopy &m_copy;
    std::function<void()> m_close;
};

/// Gives the cautious answer and writes question and answer to standard error.
std::unique_ptr<Asker> makeUnattendedAsker();

/// Asks the person at the display. The widgets bear the names of the buttons ("cmdYes", "cmdOK", ...) and of the
/// sheet's controls, a message box is "messageBox". A box that is closed by the end of the process gives the cautious
/// answer. REQUIRES: a `QApplication` when it asks.
std::unique_ptr<Asker> makeWidgetAsker();

} // namespace window
