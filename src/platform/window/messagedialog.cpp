#include "platform/window/messagedialog.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTextEdit>

namespace window {

namespace {

struct ButtonOf {
    QDialogButtonBox::StandardButton button;
    Answer answer;
    const char *name;
};
constexpr std::array<ButtonOf, 5> everyButton = {{{QDialogButtonBox::Ok, OK, "cmdOK"},
                                                  {QDialogButtonBox::Yes, Yes, "cmdYes"},
                                                  {QDialogButtonBox::No, No, "cmdNo"},
                                                  {QDialogButtonBox::Retry, Retry, "cmdRetry"},
                                                  {QDialogButtonBox::Cancel, Cancel, "cmdCancel"}}};

/// The first is the default, the last the one that refuses.
QList<Answer> answersOf(Buttons buttons) {
    switch (buttons) {
    case Buttons::OK:
        return {OK};
    case Buttons::OKCancel:
        return {OK, Cancel};
    case Buttons::YesNoCancel:
        return {Yes, No, Cancel};
    case Buttons::YesNo:
        return {Yes, No};
    case Buttons::RetryCancel:
        return {Retry, Cancel};
    }
    return {OK};
}

std::optional<QStyle::StandardPixmap> pictureOf(Icon icon) {
    switch (icon) {
    case Icon::None:
        return std::nullopt;
    case Icon::Critical:
        return QStyle::SP_MessageBoxCritical;
    case Icon::Question:
        return QStyle::SP_MessageBoxQuestion;
    case Icon::Exclamation:
        return QStyle::SP_MessageBoxWarning;
    case Icon::Information:
        return QStyle::SP_MessageBoxInformation;
    }
    return std::nullopt;
}

/// A label that wraps cuts words that are wider than itself, and can't scroll; a text field does neither.
class TextField : public QTextEdit {
  public:
    explicit TextField(const QString &text) {
        setPlainText(text);
        setReadOnly(true);
        // The keyboard is for the buttons.
        setFocusPolicy(Qt::ClickFocus);
        setTextInteractionFlags(Qt::TextSelectableByMouse);
        setFrameShape(QFrame::NoFrame);
        setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        viewport()->setAutoFillBackground(false);
        fit();
    }

  private:
    /// As wide as the text, but not wider than reads well, and as high as the text then is, but not higher than most of
    /// the screen.
    void fit() {
        constexpr int narrowest = 180;
        constexpr int widest = 560;
        constexpr int line = 2;
        document()->setTextWidth(-1);
        const int width = std::clamp(static_cast<int>(std::ceil(document()->idealWidth())), narrowest, widest);
        document()->setTextWidth(width);
        const int height = static_cast<int>(std::ceil(document()->size().height())) + line;
        const int room = screen()->availableGeometry().height() * 2 / 3;
        const bool scrolls = height > room;
        setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFixedSize(width + line + (scrolls ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0),
                     std::min(height, room));
    }
};

} // namespace

MessageDialog::MessageDialog(const Question &question) : m_question(question) {
    setObjectName(QStringLiteral("messageBox"));
    // A window manager may refuse to let a window forward whose program is not the active one.
    setWindowFlag(Qt::WindowStaysOnTopHint);
    setWindowTitle(question.title);
    setAccessibleDescription(question.text);
    auto *grid = new QGridLayout(this);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    if (QWidget *icon = makeIcon())
        grid->addWidget(icon, 0, 0, Qt::AlignTop);
    grid->addWidget(makeText(), 0, 1, Qt::AlignVCenter);
    grid->addWidget(makeButtons(), 1, 0, 1, 2);
}

QWidget *MessageDialog::makeIcon() const {
    const auto picture = pictureOf(m_question.icon);
    if (!picture)
        return nullptr;
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    auto *icon = new QLabel;
    icon->setObjectName(QStringLiteral("icon"));
    icon->setPixmap(style()->standardIcon(*picture).pixmap(size, size));
    return icon;
}

QWidget *MessageDialog::makeText() const {
    auto *text = new TextField(m_question.text);
    text->setObjectName(QStringLiteral("text"));
    return text;
}

QWidget *MessageDialog::makeButtons() {
    m_buttons = new QDialogButtonBox;
    for (const Answer answer : answersOf(m_question.buttons)) {
        const auto *each = std::find_if(everyButton.begin(), everyButton.end(),
                                        [&](const ButtonOf &button) { return button.answer == answer; });
        QPushButton *button = m_buttons->addButton(each->button);
        button->setObjectName(QString::fromLatin1(each->name));
        if (answer == answersOf(m_question.buttons).first())
            button->setDefault(true);
        connect(button, &QPushButton::clicked, this, [this, answer] {
            m_pressed = answer;
            accept();
        });
    }
    return m_buttons;
}

void MessageDialog::keyPressEvent(QKeyEvent *event) {
    for (QAbstractButton *button : m_buttons->buttons()) {
        const QKeySequence letter = QKeySequence::mnemonic(button->text());
        if (event->modifiers() == Qt::NoModifier && !letter.isEmpty() && letter[0].key() == event->key())
            return button->click();
    }
    QDialog::keyPressEvent(event);
}

void MessageDialog::reject() {
    m_pressed = answersOf(m_question.buttons).last();
    QDialog::reject();
}

Answer MessageDialog::run() {
    setModal(true);
    // The question may come while the window of another program is in front.
    show();
    raise();
    activateWindow();
    exec();
    return m_pressed.value_or(m_question.cautious);
}

} // namespace window
