/// The base of every object of the host's model.
#pragma once

#include "automation/local.h"

namespace desk {

class Session;

namespace objects {

/// An object of a session. It may outlive the session, as long as a client holds it; every member that needs the
/// session fails with 0x80010108 then.
class SessionObject : public automation::Exposed {
    Q_OBJECT
    Q_PROPERTY(Value Application READ application)
    Q_PROPERTY(Value Session READ sessionValue)

  public:
    explicit SessionObject(std::weak_ptr<desk::Session> session);
    ~SessionObject() override;

    [[nodiscard]] Value application() const;
    [[nodiscard]] Value sessionValue() const;

  protected:
    [[nodiscard]] std::shared_ptr<desk::Session> session() const;
    [[nodiscard]] const std::weak_ptr<desk::Session> &weakSession() const { return m_session; }

    template <class T>
    [[nodiscard]] std::shared_ptr<T> self() {
        return std::static_pointer_cast<T>(shared_from_this());
    }

  private:
    std::weak_ptr<desk::Session> m_session;
};

/// A position from 1 to `count`, read from an index argument. Fails with 9 beyond, 13 for what is no number.
qsizetype positionFrom(const Value &index, qsizetype count);

} // namespace objects
} // namespace desk
