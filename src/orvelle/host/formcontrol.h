/// The controls of a form of the host.
#pragma once

#include "orvelle/host/handle.h"
#include "platform/controls/control.h"

namespace host {

/// A control of a form across the protocol; the host's member names.
class FormControl : public Handle, public controls::Control {
  public:
    using Handle::Handle;
    explicit FormControl(const Handle &handle) : Handle(handle) {}

    [[nodiscard]] QString Text() const override;
    void SetText(const QString &text) override;
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
};

} // namespace host
