/// A form and its controls as code meets them that fills and reads them, whatever toolkit or process they belong to:
/// a dialog's widgets here (`window::WidgetControl`), the controls of a form of the host (`host::FormControl`).
#pragma once

#include "platform/value/value.h"

#include <QRect>
#include <QStringList>

namespace controls {

/// A text, combo or list box, or anything else with a value. A control that lacks a member fails with 438.
class Control {
  public:
    virtual ~Control() = default;
    Control() = default;
    Control(const Control &) = delete;
    Control &operator=(const Control &) = delete;

    /// What the control shows.
    [[nodiscard]] virtual QString Text() const = 0;
    /// A drop-down list fails with 380 for a text that is not among its rows; a combo takes any.
    virtual void SetText(const QString &text) = 0;
    [[nodiscard]] virtual ::Value Value() const = 0;
    virtual void SetValue(const ::Value &value) = 0;

    virtual void Clear() = 0;
    /// Appends a row whose first column is the text.
    virtual void AddItem(const QString &text) = 0;
    /// Puts rows of these texts in place of all that stand there, in one step however far away the control is.
    virtual void SetItems(const QStringList &texts) = 0;
    [[nodiscard]] virtual int ListCount() const = 0;

    /// Rows and columns count from 0. Fails with 9 for a row that is not there.
    [[nodiscard]] virtual ::Value List(int row, int column = 0) const = 0;
    virtual void SetList(int row, int column, const ::Value &value) = 0;

    /// The chosen row, or -1.
    [[nodiscard]] virtual int ListIndex() const = 0;
    virtual void SetListIndex(int row) = 0;

    /// In pixels of the form.
    [[nodiscard]] virtual QRect place() const = 0;
    /// As 0xBBGGRR.
    [[nodiscard]] virtual qint32 BackColor() const = 0;
    virtual void SetBackColor(qint32 color) = 0;
};

} // namespace controls
