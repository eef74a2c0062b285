#include "desk/objects/sessionobject.h"

#include "desk/objects/application.h"
#include "desk/objects/namespace.h"
#include "desk/objects/session.h"
#include "platform/value/convert.h"

namespace desk::objects {

SessionObject::SessionObject(std::weak_ptr<desk::Session> session) : m_session(std::move(session)) {}
SessionObject::~SessionObject() = default;

std::shared_ptr<desk::Session> SessionObject::session() const {
    std::shared_ptr<desk::Session> session = m_session.lock();
    if (!session)
        throw Failure(failures::disconnected);
    return session;
}

Value SessionObject::application() const { return automation::wrap(session()->application()); }
Value SessionObject::sessionValue() const { return automation::wrap(session()->nameSpace()); }

qsizetype positionFrom(const Value &index, qsizetype count) {
    const qint32 position = toInt32(index);
    if (position < 1 || position > count)
        throw Failure(failures::subscriptOutOfRange);
    return position - 1;
}

} // namespace desk::objects
