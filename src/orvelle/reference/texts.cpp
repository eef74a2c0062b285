#include "orvelle/reference/texts.h"

#include "orvelle/core/process.h"
#include "platform/value/failure.h"

QString fncTrim(const QString &strText) {
    qsizetype first = 0;
    qsizetype last = strText.size();
    while (first < last && strText[first] == u' ')
        ++first;
    while (last > first && strText[last - 1] == u' ')
        --last;
    return strText.mid(first, last - first);
}

QStringList fncNotBlank(QStringList strTexts) {
    strTexts.removeIf([](const QString &strText) { return fncTrim(strText).isEmpty(); });
    return strTexts;
}

QString fncCut(const QString &strText, qsizetype lngCount) {
    const bool blnHalf = lngCount < strText.size() && strText[lngCount].isLowSurrogate();
    return strText.left(blnHalf ? lngCount - 1 : lngCount);
}

QStringList fncSplitLines(const QString &strText) {
    return strText.isEmpty() ? QStringList() : strText.split(strLineEnd);
}

QString fncQuoted(const QString &strText) {
    QString doubled = strText;
    doubled.replace(u'\'', QStringLiteral("''"));
    return u'\'' + doubled + u'\'';
}

QString fncPart(const QStringList &strParts, int intIndex) {
    if (intIndex >= strParts.size())
        throw Failure(failures::subscriptOutOfRange);
    return strParts[intIndex];
}
