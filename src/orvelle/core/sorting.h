/// Dictionaries in the order of the region.
#pragma once

#include "orvelle/core/components.h"

/// The text by which an item stands in a sorted dictionary: a text is its own, an object goes by its key.
template <class T>
QString fncSortText(const QString &strKey, const T &item) {
    if constexpr (std::convertible_to<T, QString>)
        return item;
    else
        return strKey;
}

/// The order of two texts by the region, without regard to case: below, at or above 0.
qint32 fncCompareText(const QString &strLeft, const QString &strRight);

/// The places of texts in that order.
QList<qsizetype> fncSortedPlaces(const QStringList &strTexts);

/// A new dictionary with the entries of `dic` in order, texts compared without regard to case.
/// \param intColumn  0 by the keys, 1 by the items.
template <class T>
Ref<scripting::Dictionary<T>> fncSortDictionary(const Ref<scripting::Dictionary<T>> &dic, qint16 intColumn,
                                                bool /*blnDates*/) {
    auto dicSorted = fncCreateDic<T>();
    QStringList strTexts;
    for (qsizetype i = 0; i < dic->Keys().size(); ++i) {
        const QString &strKey = dic->Keys().at(i);
        strTexts.append(intColumn == 0 ? strKey : fncSortText(strKey, dic->Items().at(i)));
    }
    for (const qsizetype lngPlace : fncSortedPlaces(strTexts))
        dicSorted->Add(dic->Keys().at(lngPlace), dic->Items().at(lngPlace));
    return dicSorted;
}
