/// The face of a combo or list box that the lists fill and read. Form controls, dialog widgets and the tests' fakes
/// each meet it in their own way.
#pragma once

#include "platform/value/value.h"

class Control {
  public:
    virtual ~Control() = default;
    Control() = default;
    Control(const Control &) = delete;
    Control &operator=(const Control &) = delete;

    /// What the control shows.
    [[nodiscard]] virtual QString Text() const = 0;
    /// A drop-down list fails for a text that is not among its rows; a combo takes any.
    virtual void SetText(const QString &strText) = 0;

    virtual void Clear() = 0;
    /// Appends a row whose first column is the text.
    virtual void AddItem(const QString &strText) = 0;
    [[nodiscard]] virtual int ListCount() const = 0;

    /// Rows and columns count from 0. Fails with 9 for a row that is not there.
    [[nodiscard]] virtual ::Value List(int intRow, int intColumn = 0) const = 0;
    virtual void SetList(int intRow, int intColumn, const ::Value &varValue) = 0;

    /// The chosen row, or -1.
    [[nodiscard]] virtual int ListIndex() const = 0;
    virtual void SetListIndex(int intRow) = 0;

    [[nodiscard]] virtual ::Value Value() const = 0;
    virtual void SetValue(const ::Value &varValue) = 0;
};
