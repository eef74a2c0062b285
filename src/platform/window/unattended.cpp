// Questions where there is nobody to ask.

#include "platform/window/askers.h"

#include <cstdio>

namespace window {

namespace {

QString nameOf(Answer answer) {
    switch (answer) {
    case OK:
        return QStringLiteral("OK");
    case Cancel:
        return QStringLiteral("Cancel");
    case Abort:
        return QStringLiteral("Abort");
    case Retry:
        return QStringLiteral("Retry");
    case Ignore:
        return QStringLiteral("Ignore");
    case Yes:
        return QStringLiteral("Yes");
    case No:
        return QStringLiteral("No");
    }
    return QString::number(answer);
}

void tell(const QString &title, QString text, const QString &answer) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QString lines = QStringLiteral("[%1] %2\n[%1] answered: %3\n").arg(title, text, answer);
    // A question may quote a mail, which must not be able to steer the terminal.
    for (QChar &character : lines) {
        if (character.category() == QChar::Other_Control && character != u'\n' && character != u'\t')
            character = u'?';
    }
    std::fputs(qUtf8Printable(lines), stderr);
    std::fflush(stderr);
}

QString described(const Field &field) {
    if (field.kind == Field::Kind::Password)
        return QStringLiteral("\n  %1: (hidden)").arg(field.name);
    return QStringLiteral("\n  %1 %2: %3").arg(field.name, field.caption, field.value);
}

class UnattendedAsker : public Asker {
  public:
    Answer ask(const Question &question) override {
        tell(question.title, question.text, nameOf(question.cautious));
        return question.cautious;
    }
    QString show(Sheet &sheet) override {
        QString text = sheet.text;
        for (const Field &field : sheet.fields)
            text += described(field);
        tell(sheet.title, text, sheet.cautious.isEmpty() ? QStringLiteral("closed") : sheet.cautious);
        return sheet.cautious;
    }
};

} // namespace

std::unique_ptr<Asker> makeUnattendedAsker() { return std::make_unique<UnattendedAsker>(); }

} // namespace window
