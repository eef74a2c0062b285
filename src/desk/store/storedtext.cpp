#include "desk/store/storedtext.h"

#include "platform/value/convert.h"

#include <QCryptographicHash>

namespace desk {

namespace {

constexpr qsizetype longestKey = 200;
constexpr qsizetype keptOfLongKey = 100;
constexpr qsizetype hashLength = 64;
static_assert(keptOfLongKey + 1 + hashLength == shortenedKeyLength);

bool survivesUtf8(const QString &text) {
    const auto *units = reinterpret_cast<const char16_t *>(text.constData());
    const qsizetype size = text.size();
    if (size > 0 && units[0] == 0xFEFF)
        return false;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t unit = units[i];
        if (unit < 0xD800)
            continue;
        if (unit >= 0xFFFE)
            return false;
        if (!QChar::isSurrogate(unit))
            continue;
        if (!QChar::isHighSurrogate(unit) || i + 1 == size || !QChar::isLowSurrogate(units[i + 1]))
            return false;
        // Planes end in two such code points as well, but these go through UTF-8 unharmed.
        ++i;
    }
    return true;
}

QString numberKey(double number) { return QString::number(number + 0.0, 'g', QLocale::FloatingPointShortest); }

QString dateKey(DateTime moment) {
    if (moment.isZero() || !moment.isValid())
        return {};
    return moment.isoText();
}

} // namespace

/// Folds code point by code point, as comparing without regard to case does. Folding a whole text would turn halves of
/// surrogate pairs into other characters, or not, depending on what stands beside them.
/// No plane's letters fold into another plane, so the length stays.
QString foldedText(const QString &text) {
    QString folded = text;
    QChar *units = folded.data();
    for (qsizetype i = 0; i < folded.size(); ++i) {
        if (units[i].isHighSurrogate() && i + 1 < folded.size() && units[i + 1].isLowSurrogate()) {
            const char32_t whole = QChar::toCaseFolded(QChar::surrogateToUcs4(units[i], units[i + 1]));
            units[i] = QChar(QChar::highSurrogate(whole));
            units[++i] = QChar(QChar::lowSurrogate(whole));
        } else {
            units[i] = units[i].toCaseFolded();
        }
    }
    return folded;
}

QVariant storedText(const QString &text) {
    if (text.isEmpty())
        return QStringLiteral("");
    if (survivesUtf8(text))
        return text;
    QByteArray bytes(text.size() * 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        bytes[2 * i] = static_cast<char>(text[i].unicode() & 0xFF);
        bytes[2 * i + 1] = static_cast<char>(text[i].unicode() >> 8);
    }
    return bytes;
}

QString textOf(const QVariant &stored) {
    if (stored.typeId() != QMetaType::QByteArray)
        return stored.toString();
    const QByteArray bytes = stored.toByteArray();
    QString text(bytes.size() / 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        text[i] = QChar(static_cast<uchar>(bytes[2 * i]), static_cast<uchar>(bytes[2 * i + 1]));
    return text;
}

QString foldedKey(const QString &text) {
    QString folded = foldedText(text);
    if (folded.size() <= longestKey)
        return folded;
    const QByteArrayView bytes(reinterpret_cast<const char *>(folded.constData()), folded.size() * 2);
    const QByteArray hash = QCryptographicHash::hash(bytes.toByteArray(), QCryptographicHash::Sha256).toHex();
    return folded.left(keptOfLongKey) + QChar(0x1F) + QString::fromLatin1(hash);
}

QString keyOf(const Value &value) {
    return std::visit(
        [&value](const auto &held) -> QString {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, QString>)
                return foldedKey(held);
            else if constexpr (std::is_same_v<Held, bool>)
                return held ? QStringLiteral("true") : QStringLiteral("false");
            else if constexpr (std::is_same_v<Held, DateTime>)
                return dateKey(held);
            else if constexpr (std::is_arithmetic_v<Held> || std::is_same_v<Held, Currency>)
                return numberKey(toDouble(value));
            else
                return {};
        },
        value.held());
}

} // namespace desk
