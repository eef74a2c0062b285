#include "orvelle/core/sorting.h"

#include "platform/value/convert.h"

#include <QCollator>

namespace {

QCollator fncRegionalOrder() {
    QCollator collator(Region::locale());
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

} // namespace

qint32 fncCompareText(const QString &strLeft, const QString &strRight) {
    return fncRegionalOrder().compare(strLeft.toCaseFolded(), strRight.toCaseFolded());
}

QList<qsizetype> fncSortedPlaces(const QStringList &strTexts) {
    const QCollator collator = fncRegionalOrder();
    std::vector<QCollatorSortKey> keys;
    QList<qsizetype> places;
    for (const QString &strText : strTexts) {
        places.append(places.size());
        keys.push_back(collator.sortKey(strText.toCaseFolded()));
    }
    const auto fncKey = [&](qsizetype i) { return keys[static_cast<std::size_t>(places.at(i))]; };
    // Rows jump over others when they are swapped, so equal texts don't keep their order: it is the order that people
    // have in their lists.
    for (qsizetype i = 0; i + 1 < places.size(); ++i) {
        for (qsizetype j = i; j < places.size(); ++j) {
            if (fncKey(i).compare(fncKey(j)) > 0)
                places.swapItemsAt(i, j);
        }
    }
    return places;
}
