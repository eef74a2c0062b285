#include "platform/window/widgetcontrol.h"

#include "platform/value/convert.h"
#include "platform/value/failure.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

namespace window {
namespace {

constexpr qint32 invalidPropertyValue = 380;

/// The first column is what is shown; the others are kept beside it.
constexpr int roleOf(int column) { return column == 0 ? Qt::DisplayRole : Qt::UserRole + column; }

[[noreturn]] void lacking(const QWidget &widget) {
    throw Failure(failures::memberMissing, QStringLiteral("%1 is no control of that kind.").arg(widget.objectName()));
}

} // namespace

WidgetControl::WidgetControl(QWidget &widget) : m_widget(&widget) {}
WidgetControl::~WidgetControl() = default;

template <class Widget>
Widget *WidgetControl::as() const {
    return qobject_cast<Widget *>(&widget());
}

QWidget &WidgetControl::widget() const {
    if (!m_widget)
        throw Failure(failures::objectNotSet);
    return *m_widget;
}

QAbstractItemModel &WidgetControl::rows() const {
    if (auto *combo = as<QComboBox>())
        return *combo->model();
    if (auto *list = as<QListWidget>())
        return *list->model();
    lacking(widget());
}

QAbstractItemModel &WidgetControl::rowsWith(int row) const {
    QAbstractItemModel &all = rows();
    if (row < 0 || row >= all.rowCount())
        throw Failure(failures::subscriptOutOfRange);
    return all;
}

QString WidgetControl::Text() const {
    if (const auto *combo = as<QComboBox>())
        return combo->currentText();
    if (const auto *list = as<QListWidget>())
        return list->currentItem() ? list->currentItem()->text() : QString();
    if (const auto *line = as<QLineEdit>())
        return line->text();
    if (const auto *text = as<QPlainTextEdit>())
        return text->toPlainText();
    if (const auto *button = as<QAbstractButton>())
        return button->text();
    lacking(widget());
}

void WidgetControl::SetText(const QString &text) {
    if (auto *line = as<QLineEdit>())
        return line->setText(text);
    if (auto *edit = as<QPlainTextEdit>())
        return edit->setPlainText(text);
    if (auto *button = as<QAbstractButton>())
        return button->setText(text);
    auto *combo = as<QComboBox>();
    const QModelIndexList found = ListCount() == 0
                                      ? QModelIndexList()
                                      : rows().match(rows().index(0, 0), Qt::DisplayRole, text, 1, Qt::MatchExactly);
    if (!found.isEmpty())
        SetListIndex(found.first().row());
    else if (combo && combo->isEditable())
        combo->setEditText(text);
    else
        throw Failure(invalidPropertyValue, QStringLiteral("There is no row \"%1\" to choose.").arg(text));
}

::Value WidgetControl::Value() const {
    const auto *button = as<QAbstractButton>();
    return button ? ::Value(button->isChecked()) : ::Value(Text());
}

void WidgetControl::SetValue(const ::Value &value) {
    if (auto *button = as<QAbstractButton>())
        button->setChecked(toBool(value));
    else
        SetText(toText(value));
}

void WidgetControl::Clear() {
    if (auto *combo = as<QComboBox>())
        combo->clear();
    else if (auto *list = as<QListWidget>())
        list->clear();
    else
        SetText({});
}

void WidgetControl::AddItem(const QString &text) {
    if (auto *list = as<QListWidget>())
        return list->addItem(text);
    auto *combo = as<QComboBox>();
    if (!combo)
        lacking(widget());
    // A combo would choose its first row by itself.
    const int chosen = combo->currentIndex();
    const QString shown = combo->currentText();
    combo->addItem(text);
    combo->setCurrentIndex(chosen);
    if (combo->isEditable())
        combo->setEditText(shown);
}

void WidgetControl::SetItems(const QStringList &texts) {
    static_cast<void>(rows());
    Clear();
    if (auto *list = as<QListWidget>())
        return list->addItems(texts);
    auto *combo = as<QComboBox>();
    combo->addItems(texts);
    combo->setCurrentIndex(-1);
    if (combo->isEditable())
        combo->clearEditText();
}

int WidgetControl::ListCount() const { return rows().rowCount(); }

::Value WidgetControl::List(int row, int column) const {
    const QVariant data = rowsWith(row).data(rows().index(row, 0), roleOf(column));
    return data.canConvert<::Value>() ? data.value<::Value>() : data.isValid() ? ::Value(data.toString()) : ::Value();
}

void WidgetControl::SetList(int row, int column, const ::Value &value) {
    const QVariant data = column == 0 ? QVariant(toText(value)) : QVariant::fromValue(value);
    rowsWith(row).setData(rows().index(row, 0), data, roleOf(column));
}

int WidgetControl::ListIndex() const {
    if (const auto *combo = as<QComboBox>())
        return combo->currentIndex();
    if (const auto *list = as<QListWidget>())
        return list->currentRow();
    lacking(widget());
}

void WidgetControl::SetListIndex(int row) {
    static_cast<void>(rowsWith(row));
    if (auto *combo = as<QComboBox>())
        combo->setCurrentIndex(row);
    else
        as<QListWidget>()->setCurrentRow(row);
}

QRect WidgetControl::place() const {
    const QWidget &control = widget();
    return {control.mapTo(control.window(), QPoint()), control.size()};
}

qint32 WidgetControl::BackColor() const {
    const QColor color = widget().palette().color(widget().backgroundRole());
    return color.red() | color.green() << 8 | color.blue() << 16;
}

void WidgetControl::SetBackColor(qint32 color) {
    QPalette palette = widget().palette();
    palette.setColor(widget().backgroundRole(), QColor(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF));
    widget().setPalette(palette);
}

} // namespace window
