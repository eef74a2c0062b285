/// What the objects ask of the windows that people see.
#pragma once

#include "desk/content/folderpath.h"

namespace desk {

class Session;

namespace objects {
class Explorer;
class Inspector;
} // namespace objects

/// The window that a person sees of an Explorer or Inspector. It knows its object, asks it for whatever the person does
/// (another folder, to the front, the end), and is told here what the object does, whoever asked for that.
///
/// REQUIRES of a window: it may be told to close, and be destroyed, while a request of its own is under way.
class ShownWindow {
  public:
    ShownWindow() = default;
    virtual ~ShownWindow() = default;
    ShownWindow(const ShownWindow &) = delete;
    ShownWindow &operator=(const ShownWindow &) = delete;

    /// Comes up in front. Asked once, before anything else.
    /// \param state  0 maximised, 1 minimised, 2 normal.
    virtual void show(const QString &caption, int state) = 0;
    /// Has been shown; comes before the other windows, and out of its icon.
    virtual void bringToFront() = 0;
    virtual void setCaption(const QString &caption) = 0;
    virtual void setState(int state) = 0;
    /// Goes for good. Asked once, last.
    virtual void close() = 0;
};

/// The objects behave the same with and without windows: where there is no factory, or it makes none, nobody is asked
/// and nothing is shown.
class WindowFactory {
  public:
    WindowFactory() = default;
    virtual ~WindowFactory() = default;
    WindowFactory(const WindowFactory &) = delete;
    WindowFactory &operator=(const WindowFactory &) = delete;

    /// The choice of a folder by the person at the display, who sees the folders of all stores, the one in front
    /// selected. Nothing on cancel, where nobody can be asked, and once the client that asks has gone. The event loop
    /// runs meanwhile, so that other clients are served.
    /// Fails with 0x8004010F where the chosen folder was deleted meanwhile.
    virtual std::optional<FolderPlace> pickFolder(Session &session) = 0;

    /// A window for an object that is displayed for the first time. Null where there is none for it. The object
    /// outlives its window.
    virtual std::unique_ptr<ShownWindow> makeWindow(objects::Explorer &explorer);
    virtual std::unique_ptr<ShownWindow> makeWindow(objects::Inspector &inspector);
};

/// What an object holds of its window: nothing before it is shown, where there is none, and once it is closed.
class WindowHold {
  public:
    [[nodiscard]] bool isShown() const { return m_isShown; }

    /// Shows the object's window, the first time alone.
    /// \return whether this was the first time.
    template <class Object>
    bool show(WindowFactory *factory, Object &object) {
        if (std::exchange(m_isShown, true))
            return false;
        if (factory)
            m_window = factory->makeWindow(object);
        // It may be closed while it comes up.
        if (const std::shared_ptr<ShownWindow> window = m_window)
            window->show(object.caption(), object.windowState());
        return true;
    }
    void bringToFront();
    void setCaption(const QString &caption);
    void setState(int state);
    void close();

  private:
    std::shared_ptr<ShownWindow> m_window;
    bool m_isShown = false;
};

} // namespace desk
