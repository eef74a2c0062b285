#include "desk/mail/bounds.h"

#include <QTextBoundaryFinder>

namespace desk {
namespace {

constexpr QChar ellipsis(0x2026);

qsizetype betweenCodePoints(QStringView text, qsizetype at) {
    return at > 0 && at < text.size() && text[at].isLowSurrogate() && text[at - 1].isHighSurrogate() ? at - 1 : at;
}

/// The first text in braces, its braces included; empty when there is none.
QStringView firstMark(QStringView text) {
    const qsizetype open = text.indexOf(u'{');
    const qsizetype close = open < 0 ? -1 : text.indexOf(u'}', open);
    return close < 0 ? QStringView() : text.sliced(open, close + 1 - open);
}

} // namespace

qsizetype cutPosition(QStringView text, qsizetype most) {
    // Longer than any character of any script.
    constexpr qsizetype longestCharacter = 64;
    if (text.size() <= most)
        return text.size();
    const qsizetype at = betweenCodePoints(text, most);
    const qsizetype start = betweenCodePoints(text, std::max<qsizetype>(0, at - longestCharacter));
    const QStringView window = text.sliced(start, std::min(text.size(), at + longestCharacter) - start);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, window.data(), window.size());
    finder.setPosition(at - start);
    const qsizetype boundary = finder.isAtBoundary() ? finder.position() : finder.toPreviousBoundary();
    return boundary > 0 ? start + boundary : at;
}

QString bounded(const QString &text, qsizetype most) {
    return text.size() <= most ? text : text.first(cutPosition(text, most - 1)) + ellipsis;
}

QString boundedFileName(const QString &name, qsizetype most) {
    constexpr qsizetype longestExtension = 20;
    if (name.size() <= most)
        return name;
    const qsizetype dot = name.lastIndexOf(u'.');
    const QString extension = dot >= 0 && name.size() - dot <= longestExtension ? name.sliced(dot) : QString();
    const QStringView stem = QStringView(name).chopped(extension.size());
    return stem.first(cutPosition(stem, most - extension.size())).toString() + extension;
}

QString boundedSubject(const QString &subject) {
    constexpr qsizetype longestMark = 100;
    if (subject.size() <= longestSubject)
        return subject;
    const QString front = bounded(subject, longestSubject);
    const QStringView mark = firstMark(subject);
    if (mark.isEmpty() || mark.size() > longestMark || mark == firstMark(front))
        return front;
    return bounded(subject, longestSubject - mark.size() - 1) + u' ' + mark.toString();
}

Address bounded(const Address &address) {
    if (address.address.size() <= longestAddress)
        return {bounded(address.name, longestName), address.address};
    const bool isNamed = !address.name.isEmpty();
    return {bounded(isNamed ? address.name : address.address, longestName), {}};
}

QString peopleText(const QList<Address> &addresses) {
    // For what tells the number of those left out.
    constexpr qsizetype room = 40;
    QString text;
    qsizetype written = 0;
    for (const Address &entry : addresses) {
        const Address each = bounded(entry);
        const bool hasBoth = !each.name.isEmpty() && !each.address.isEmpty() && each.name != each.address;
        const QString one = hasBoth ? QStringLiteral("%1 <%2>").arg(each.name, each.address) : each.display();
        if (text.size() + one.size() > longestPeople - room)
            break;
        text += (text.isEmpty() ? QString() : QStringLiteral("; ")) + one;
        ++written;
    }
    if (written < addresses.size())
        text += QStringLiteral("; … and %1 more").arg(addresses.size() - written);
    return text;
}

QString threadText(const QStringList &identifiers) {
    if (identifiers.size() <= mostReferences)
        return identifiers.join(u' ');
    return identifiers.first() + u' ' + identifiers.last(mostReferences - 1).join(u' ');
}

} // namespace desk
