/// What helpers may do to a window and to a control, whatever toolkit or process they belong to.
#pragma once

#include <QRect>
#include <QString>

#include <optional>

namespace window {

/// A top-level window.
class Form {
  public:
    virtual ~Form() = default;
    [[nodiscard]] virtual QString Caption() const = 0;
    [[nodiscard]] virtual bool Visible() const = 0;
    virtual void setTopMost(bool topMost) = 0;
    /// Gives it an entry of its own in the taskbar.
    virtual void setInTaskBar(bool shown) = 0;
    virtual void SetFocus() = 0;
};

/// A surface whose colours can be read.
class Pixels {
  public:
    virtual ~Pixels() = default;
    /// The colour as 0xBBGGRR; nothing outside of the surface.
    [[nodiscard]] virtual std::optional<qint32> GetPixel(qint32 x, qint32 y) const = 0;
};

/// A control with a background.
class Control {
  public:
    virtual ~Control() = default;
    /// In pixels of the surface.
    [[nodiscard]] virtual QRect place() const = 0;
    [[nodiscard]] virtual qint32 BackColor() const = 0;
    virtual void setBackColor(qint32 color) = 0;
};

} // namespace window
