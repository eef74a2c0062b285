/// What happens to the bars of one window, for the window itself. No events of the object model: no client can connect
/// to these.
#pragma once

#include <QObject>

#include <memory>

namespace desk {

namespace objects {
class CommandBar;
class CommandBarButton;
} // namespace objects

/// Told at once, when it has happened. What is added comes with its first properties and is told as changed for each
/// that it is given afterwards; what is removed is told last, and is still whole then.
class BarNotices : public QObject {
    Q_OBJECT

  Q_SIGNALS:
    void barAdded(const std::shared_ptr<desk::objects::CommandBar> &bar);
    void barChanged(const desk::objects::CommandBar &bar);
    /// Its buttons go with it, untold.
    void barRemoved(const desk::objects::CommandBar &bar);
    /// The place among the bar's buttons, counted from 0.
    void buttonAdded(const desk::objects::CommandBar &bar,
                     const std::shared_ptr<desk::objects::CommandBarButton> &button, qsizetype place);
    /// A button of a bar, or one of the window's own commands.
    void buttonChanged(const desk::objects::CommandBarButton &button);
    void buttonRemoved(const desk::objects::CommandBarButton &button);
};

} // namespace desk
