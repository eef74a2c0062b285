#include "desk/objects/windowfactory.h"

namespace desk {

std::unique_ptr<ShownWindow> WindowFactory::makeWindow(objects::Explorer & /*explorer*/) { return nullptr; }
std::unique_ptr<ShownWindow> WindowFactory::makeWindow(objects::Inspector & /*inspector*/) { return nullptr; }

void WindowHold::bringToFront() {
    if (const std::shared_ptr<ShownWindow> window = m_window)
        window->bringToFront();
}

void WindowHold::setCaption(const QString &caption) {
    if (const std::shared_ptr<ShownWindow> window = m_window)
        window->setCaption(caption);
}

void WindowHold::setState(int state) {
    if (const std::shared_ptr<ShownWindow> window = m_window)
        window->setState(state);
}

void WindowHold::close() {
    // The window may ask its object for something on its way out: there is no window any more then.
    if (const std::shared_ptr<ShownWindow> window = std::exchange(m_window, nullptr))
        window->close();
}

} // namespace desk
