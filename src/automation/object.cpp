#include "automation/object.h"

namespace automation {

Value follow(Object &from, std::span<const Question> path) {
    if (path.empty())
        throw Failure(failures::invalidCall);
    Object *at = &from;
    Value found;
    ObjectPtr kept;
    for (const Question &question : path) {
        if (at == nullptr)
            throw Failure(failures::objectNotSet);
        found = question.arguments.isEmpty() ? at->get(question.member) : at->call(question.member, question.arguments);
        if (&question == &path.back())
            break;
        kept = found.object();
        at = kept.get();
    }
    return found;
}

std::vector<Outcome> Object::askAll(const std::vector<Path> &questions) {
    std::vector<Outcome> answers;
    answers.reserve(questions.size());
    for (const Path &path : questions) {
        Value value;
        const auto failure = Attempt([&] { value = follow(*this, path); });
        answers.push_back(failure ? Outcome(*failure) : Outcome(std::move(value)));
    }
    return answers;
}

void Object::putThrough(const Path &path, const QString &member, const Value &value) {
    if (path.empty()) {
        put(member, value);
        return;
    }
    const ObjectPtr object = follow(*this, path).object();
    if (!object)
        throw Failure(failures::objectNotSet);
    object->put(member, value);
}

} // namespace automation
