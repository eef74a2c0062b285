#include "platform/value/pathbytes.h"

namespace {

constexpr char16_t firstOdd = 0xDC80;
constexpr char16_t lastOdd = 0xDCFF;

bool isOdd(QChar letter) { return letter.unicode() >= firstOdd && letter.unicode() <= lastOdd; }

/// The length of the one letter of UTF-8 that the bytes begin with; 0 where they don't.
qsizetype letterLength(QByteArrayView bytes) {
    const auto first = static_cast<unsigned char>(bytes.front());
    const qsizetype length = first < 0x80 ? 1 : first < 0xC0 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    return length <= bytes.size() && bytes.first(length).isValidUtf8() ? length : 0;
}

} // namespace

QString pathFromBytes(const QByteArray &bytes) {
    if (bytes.isValidUtf8())
        return QString::fromUtf8(bytes);
    QString path;
    QByteArrayView rest(bytes);
    while (!rest.isEmpty()) {
        const qsizetype length = letterLength(rest);
        if (length > 0)
            path += QString::fromUtf8(rest.first(length));
        else
            path += QChar(static_cast<char16_t>(firstOdd + static_cast<unsigned char>(rest.front()) - 0x80));
        rest = rest.sliced(std::max<qsizetype>(length, 1));
    }
    return path;
}

QByteArray bytesOfPath(const QString &path) {
    QByteArray bytes;
    qsizetype plain = 0;
    for (qsizetype at = 0; at < path.size(); ++at) {
        const bool isHalf = at > 0 && path[at - 1].isHighSurrogate();
        if (!isOdd(path[at]) || isHalf)
            continue;
        bytes += QStringView(path).sliced(plain, at - plain).toUtf8();
        bytes += static_cast<char>(path[at].unicode() - firstOdd + 0x80);
        plain = at + 1;
    }
    return bytes + QStringView(path).sliced(plain).toUtf8();
}
