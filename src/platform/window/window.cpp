#include "platform/window/window.h"

#include "platform/window/askers.h"

namespace window {

ProcessLocal<std::shared_ptr<Asker>> asker;

namespace {

Asker &current() {
    static const std::unique_ptr<Asker> nobody = makeUnattendedAsker();
    static const std::unique_ptr<Asker> person = makeWidgetAsker();
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
    return current().ask({text, buttons, icon, title, cautious.value_or(cautiousAnswer(buttons))});
}

QString showSheet(Sheet &sheet) { return current().show(sheet); }

} // namespace window
