/// What happens to the windows of a session, for those of this process who show or list them. No events of the object
/// model: no client can connect to these.
#pragma once

#include <QObject>

#include <memory>

namespace desk {

namespace objects {
class Explorer;
class Inspector;
class SessionObject;
} // namespace objects

/// Told at once, when it has happened; before the event of the object model, where there is one.
class WindowNotices : public QObject {
    Q_OBJECT

  Q_SIGNALS:
    /// A new window is in front of the others. It is drawn when it is displayed.
    void explorerOpened(const std::shared_ptr<desk::objects::Explorer> &explorer);
    void inspectorOpened(const std::shared_ptr<desk::objects::Inspector> &inspector);
    /// One that was not in front is.
    void cameToFront(const desk::objects::SessionObject &window);
    /// It shows another folder.
    void folderChanged(const desk::objects::Explorer &explorer);
    /// A property of its item, standard or custom, has another value.
    void itemChanged(const desk::objects::Inspector &inspector);
    void closed(const desk::objects::SessionObject &window);
};

} // namespace desk
