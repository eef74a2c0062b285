/// A top-level window as code meets it that shows it, and what stands in it.
#pragma once

#include "platform/controls/control.h"

#include <memory>
#include <optional>

namespace controls {

class Form {
  public:
    virtual ~Form() = default;
    Form() = default;
    Form(const Form &) = delete;
    Form &operator=(const Form &) = delete;

    [[nodiscard]] virtual QString Caption() const = 0;
    [[nodiscard]] virtual bool Visible() const = 0;
    virtual void SetTopMost(bool topMost) = 0;
    /// Gives it an entry of its own in the taskbar.
    virtual void SetInTaskBar(bool shown) = 0;
    virtual void SetFocus() = 0;
    /// The control of that name; null where there is none.
    [[nodiscard]] virtual std::unique_ptr<Control> Controls(const QString &name) const = 0;
};

/// A surface whose colours can be read.
class Pixels {
  public:
    virtual ~Pixels() = default;
    /// The colour as 0xBBGGRR; nothing outside of the surface.
    [[nodiscard]] virtual std::optional<qint32> GetPixel(qint32 x, qint32 y) const = 0;
};

} // namespace controls
