#include "automation/object.h"

namespace automation {

ObjectPtr follow(Object &from, const Path &path) {
    ObjectPtr object;
    Object *at = &from;
    for (const Question &step : path) {
        const Value found = step.arguments.isEmpty() ? at->get(step.member) : at->call(step.member, step.arguments);
        object = found.object();
        if (!object)
            throw Failure(failures::objectNotSet);
        at = object.get();
    }
    return object;
}

Value Object::callThrough(const Path &path, const QString &member, const ValueList &arguments) {
    const ObjectPtr object = follow(*this, path);
    return (object ? *object : *this).call(member, arguments);
}

void Object::tryPut(const Path &path, const QString &member, const Value &value) {
    Attempt([&] {
        const ObjectPtr object = follow(*this, path);
        (object ? *object : *this).put(member, value);
    });
}

} // namespace automation
