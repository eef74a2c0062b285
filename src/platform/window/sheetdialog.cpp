#include "platform/window/sheetdialog.h"

#include "platform/value/failure.h"
#include "platform/window/tree.h"
#include "platform/window/widgetcontrol.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace window {

namespace {

QLabel *makeLabel(const QString &text) {
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A label that wraps asks for less room than its lines read well in.
    constexpr int widest = 420;
    const QSize alone = label->fontMetrics().size(0, text);
    label->setMinimumWidth(std::min(alone.width(), widest));
    return label;
}

template <class Toggle>
QWidget *makeToggle(Field &field) {
    auto *toggle = new Toggle(field.caption);
    toggle->setChecked(field.value == QStringLiteral("1"));
    QObject::connect(toggle, &QAbstractButton::toggled,
                     [&field](bool ticked) { field.value = ticked ? QStringLiteral("1") : QStringLiteral("0"); });
    return toggle;
}

QWidget *makeText(Field &field) {
    auto *edit = new QLineEdit(field.value);
    if (field.kind == Field::Kind::Password)
        edit->setEchoMode(QLineEdit::Password);
    QObject::connect(edit, &QLineEdit::textChanged, [&field](const QString &text) { field.value = text; });
    return edit;
}

QWidget *makeChoice(Field &field) {
    auto *choice = new QComboBox;
    WidgetControl control(*choice);
    control.SetItems(field.choices);
    // A value of no row leaves the first one chosen.
    if (Attempt([&] { control.SetText(field.value); }) && control.ListCount() > 0)
        control.SetListIndex(0);
    QObject::connect(choice, &QComboBox::currentTextChanged, [&field](const QString &text) { field.value = text; });
    return choice;
}

} // namespace

SheetDialog::SheetDialog(Sheet &sheet) : m_sheet(sheet) {
    setObjectName(sheet.name);
    setWindowTitle(sheet.title);
    setWindowFlag(Qt::WindowStaysOnTopHint, sheet.topMost);
    auto *form = new QFormLayout(this);
    if (!sheet.text.isEmpty())
        form->addRow(makeLabel(sheet.text));
    for (Field &field : sheet.fields) {
        QWidget *control = makeControl(field);
        control->setObjectName(field.name);
        const bool hasLabel =
            field.kind == Field::Kind::Text || field.kind == Field::Kind::Password || field.kind == Field::Kind::Choice;
        if (hasLabel && !field.caption.isEmpty())
            form->addRow(field.caption, control);
        else
            form->addRow(control);
        if (field.kind == Field::Kind::Tree)
            control->setFocus();
    }
    form->addRow(makeButtons());
    bindEnabling();
}

QWidget *SheetDialog::makeControl(Field &field) {
    switch (field.kind) {
    case Field::Kind::Check:
        return makeToggle<QCheckBox>(field);
    case Field::Kind::Option:
        return makeToggle<QRadioButton>(field);
    case Field::Kind::Choice:
        return makeChoice(field);
    case Field::Kind::Label:
        return makeLabel(field.caption);
    case Field::Kind::Tree:
        return makeTree(field);
    case Field::Kind::Text:
    case Field::Kind::Password:
        break;
    }
    return makeText(field);
}

QWidget *SheetDialog::makeButtons() {
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->addStretch();
    for (const Sheet::Button &each : m_sheet.buttons) {
        auto *button = new QPushButton(each.caption);
        button->setObjectName(each.name);
        connect(button, &QPushButton::clicked, this, [this, name = each.name] {
            m_pressed = name;
            accept();
        });
        layout->addWidget(button);
    }
    return row;
}

void SheetDialog::bindEnabling() {
    for (const Field &field : m_sheet.fields) {
        auto *switching = field.disabledBy.isEmpty() ? nullptr : findChild<QAbstractButton *>(field.disabledBy);
        auto *control = findChild<QWidget *>(field.name);
        if (switching == nullptr || control == nullptr)
            continue;
        control->setDisabled(switching->isChecked());
        connect(switching, &QAbstractButton::toggled, control, &QWidget::setDisabled);
    }
}

QString SheetDialog::run() {
    if (m_sheet.opened)
        m_sheet.opened([this] { reject(); });
    setModal(true);
    // The question may come from another program, whose window is in front.
    show();
    raise();
    activateWindow();
    exec();
    return m_pressed;
}

} // namespace window
