#include "platform/window/window.h"

#include "platform/window/askers.h"

namespace window {

ProcessLocal<std::shared_ptr<Asker>> asker;
ProcessLocal<std::function<void(const std::function<void()> &ask)>> aroundQuestion;

namespace {

/// The questions of a copy that wait for a person, the youngest last.
struct Waiting {
    std::vector<OpenQuestion *> open;
    bool isClosed = false;
};
ProcessLocal<Waiting> waiting;

void askAround(const std::function<void()> &ask) {
    // Held, for the question may outlive what is set.
    if (const auto around = aroundQuestion.get())
        around(ask);
    else
        ask();
}

Asker &current() {
    static const std::unique_ptr<Asker> nobody = makeUnattendedAsker();
    static const std::unique_ptr<Asker> person = makeWidgetAsker();
    if (waiting->isClosed)
        return *nobody;
    if (asker.get())
        return *asker.get();
    return isUnattended() ? *nobody : *person;
}

Answer cautiousAnswer(Buttons buttons) {
    switch (buttons) {
    case Buttons::OK:
        return OK;
    case Buttons::YesNo:
        return No;
    default:
        return Cancel;
    }
}

} // namespace

const Field *Sheet::field(const QString &fieldName) const {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field &f) { return f.name == fieldName; });
    return found == fields.end() ? nullptr : &*found;
}

QString Sheet::value(const QString &fieldName) const {
    const Field *found = field(fieldName);
    return found ? found->value : QString();
}

Answer msgBox(const QString &text, Buttons buttons, Icon icon, const QString &title, std::optional<Answer> cautious) {
    const Question question{text, buttons, icon, title, cautious.value_or(cautiousAnswer(buttons))};
    Answer answer = question.cautious;
    askAround([&] { answer = current().ask(question); });
    return answer;
}

QString showSheet(Sheet &sheet) {
    QString pressed;
    askAround([&] {
        if (!waiting->isClosed)
            pressed = current().show(sheet);
    });
    return pressed;
}

OpenQuestion::OpenQuestion(std::function<void()> close) : m_copy(ProgramCopy::current()), m_close(std::move(close)) {
    waiting->open.push_back(this);
}

OpenQuestion::~OpenQuestion() {
    const ProgramCopy::Scope scope(m_copy);
    std::erase(waiting->open, this);
}

void closeQuestions() {
    waiting->isClosed = true;
    const auto open = waiting->open;
    for (auto each = open.rbegin(); each != open.rend(); ++each)
        (*each)->close();
}

} // namespace window
