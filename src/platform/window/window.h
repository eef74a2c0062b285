/// Modal questions. Everything that would wait for a person goes through here, so that it can be answered without one:
/// by a person at a display, by the cautious answer where there is nobody, by a script in tests (`scripted.h`).
#pragma once

#include "platform/value/processlocal.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace window {

/// The numbers of the message box, as callers test and store them.
enum Answer : qint32 { OK = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };
enum class Buttons : qint32 { OK = 0, OKCancel = 1, YesNoCancel = 3, YesNo = 4, RetryCancel = 5 };
enum class Icon : qint32 { None = 0, Critical = 16, Question = 32, Exclamation = 48, Information = 64 };

/// A message with buttons.
struct Question {
    QString text;
    Buttons buttons = Buttons::OK;
    Icon icon = Icon::None;
    QString title;
    /// What is answered where nobody can be asked.
    Answer cautious = OK;
};

/// One line of a tree, behind the line that it hangs below.
struct TreeRow {
    /// 0 for the top; at most one more than the row before.
    int depth = 0;
    QString key;
    QString caption;
};

/// One control of a sheet. `value` is the text, "1" and "0" for a check box or an option, a tree's selected key.
struct Field {
    enum class Kind { Text, Password, Check, Option, Choice, Label, Tree };
    Kind kind = Kind::Text;
    /// The control's name, which is also the object name of its widget.
    QString name;
    QString caption;
    QString value;
    QStringList choices;
    /// The name of a check box or option whose ticking disables this control; empty for none.
    QString disabledBy;
    QList<TreeRow> rows{};
};

/// A small dialog: controls above a row of buttons. It closes on every button; a dialog that stays open after a
/// button is shown again with the values it gave.
struct Sheet {
    struct Button {
        QString name;
        QString caption;
    };
    /// The form's name, such as "frmMessageBox".
    QString name;
    QString title;
    QString text;
    QList<Field> fields;
    QList<Button> buttons;
    /// The button that is pressed where nobody can be asked. Empty is closing the dialog.
    QString cautious;
    bool topMost = false;
    /// Told, when a person is being asked, how the dialog is closed from outside as if by Cancel.
    std::function<void(const std::function<void()> &close)> opened{};

    [[nodiscard]] const Field *field(const QString &fieldName) const;
    /// The value of a field after the dialog; empty for a field that is not there.
    [[nodiscard]] QString value(const QString &fieldName) const;
};

/// Who answers. One per program copy; the process's own until a test puts another.
class Asker {
  public:
    virtual ~Asker() = default;
    virtual Answer ask(const Question &question) = 0;
    /// The name of the button pressed, empty when the dialog was closed otherwise. Changes the fields' values.
    virtual QString show(Sheet &sheet) = 0;
};

/// The asker of this copy. Nothing stands for the process's own: a person where a `QApplication` exists and
/// ORVELLE_UNATTENDED is not 1, the cautious answer written to standard error otherwise.
extern ProcessLocal<std::shared_ptr<Asker>> asker;

/// Asks and gives the message box's number. The cautious answer is OK for a message, else Cancel or No, unless another
/// is given.
Answer msgBox(const QString &text, Buttons buttons, Icon icon, const QString &title,
              std::optional<Answer> cautious = std::nullopt);

/// Shows a sheet and gives the name of the button pressed, empty when it was closed otherwise.
QString showSheet(Sheet &sheet);

/// How the questions of this copy are asked: called with what asks, which it calls once. Empty is just that. What it
/// throws afterwards reaches whoever asked.
extern ProcessLocal<std::function<void(const std::function<void()> &ask)>> aroundQuestion;

/// Closes the questions of this copy that wait for a person: a message with its cautious answer, a sheet as if it were
/// closed. Nobody is shown a question of this copy afterwards; each gets its cautious answer at once and is written to
/// standard error.
void closeQuestions();

/// Whether nobody is there to be asked.
bool isUnattended();

/// Brings the window of this process with that title to the front; false when there is none.
bool activate(const QString &title);

} // namespace window
