#include "desk/store/entryid.h"

#include <QtEndian>

namespace desk {

namespace {

constexpr qsizetype markerBytes = 4;
constexpr qsizetype entryBytes = markerBytes + EntryId::tagBytes + 8;
constexpr char storeMarker[] = "0000000038A1BB10";

} // namespace

QString EntryId::toText() const {
    char marker[markerBytes];
    char digits[8];
    qToBigEndian(static_cast<quint32>(kind), marker);
    qToBigEndian(number, digits);
    const QByteArray bytes = QByteArray(marker, sizeof marker) + storeTag + QByteArray(digits, sizeof digits);
    return QString::fromLatin1(bytes.toHex().toUpper());
}

std::optional<EntryId> EntryId::parse(const QString &text) {
    if (text.size() != 2 * entryBytes)
        return std::nullopt;
    for (const QChar digit : text) {
        const char16_t unit = digit.unicode();
        if (!(unit >= '0' && unit <= '9') && !(unit >= 'A' && unit <= 'F') && !(unit >= 'a' && unit <= 'f'))
            return std::nullopt;
    }
    const QByteArray bytes = QByteArray::fromHex(text.toLatin1());
    const quint32 kind = qFromBigEndian<quint32>(bytes.constData());
    const qint64 number = qFromBigEndian<qint64>(bytes.constData() + markerBytes + tagBytes);
    if (kind > static_cast<quint32>(Kind::Folder) || number <= 0)
        return std::nullopt;
    return EntryId{.kind = static_cast<Kind>(kind), .storeTag = bytes.mid(markerBytes, tagBytes), .number = number};
}

QString storeIdText(const QByteArray &storeTag) {
    return QLatin1String(storeMarker) + QString::fromLatin1(storeTag.toHex().toUpper());
}

} // namespace desk
