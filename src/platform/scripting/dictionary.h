/// The dictionary component: every list of the system rests on it.
#pragma once

#include "platform/value/failure.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace scripting {

/// Keys with items, in the order of adding. Keys are compared as text without regard to case, in any alphabet, and keep
/// the spelling they were added with.
template <class T>
class Dictionary {
  public:
    [[nodiscard]] qint32 Count() const { return static_cast<qint32>(m_keys.size()); }
    [[nodiscard]] bool Exists(const QString &key) const { return m_places.contains(folded(key)); }

    /// The key's item. As with the component itself, reading a missing key adds it with an item of its first value.
    [[nodiscard]] T &Item(const QString &key) {
        const QString place = folded(key);
        const auto found = m_places.constFind(place);
        if (found != m_places.constEnd())
            return m_items[*found];
        return append(place, key, T{});
    }

    /// Fails with 457 when the key is there already.
    void Add(const QString &key, T item) {
        const QString place = folded(key);
        if (m_places.contains(place))
            throw Failure(failures::keyExists);
        append(place, key, std::move(item));
    }

    /// Replaces the key's item, or adds it at the end.
    void Set(const QString &key, T item) { Item(key) = std::move(item); }

    /// Fails with 5 when the key is missing.
    void Remove(const QString &key) {
        const auto place = m_places.constFind(folded(key));
        if (place == m_places.constEnd())
            throw Failure(failures::invalidCall);
        m_keys.removeAt(*place);
        m_items.removeAt(*place);
        m_places.clear();
        for (qsizetype i = 0; i < m_keys.size(); ++i)
            m_places.insert(folded(m_keys.at(i)), i);
    }

    [[nodiscard]] const QStringList &Keys() const { return m_keys; }
    [[nodiscard]] const QList<T> &Items() const { return m_items; }

  private:
    /// Most keys are plain letters, which need no look into the tables of all alphabets.
    static QString folded(const QString &key) {
        QString result = key;
        for (QChar &each : result) {
            if (each > u'\x7F')
                return key.toCaseFolded();
            if (each >= u'A' && each <= u'Z')
                each = QChar(each.unicode() + (u'a' - u'A'));
        }
        return result;
    }
    T &append(const QString &place, const QString &key, T item) {
        m_places.insert(place, m_keys.size());
        m_keys.append(key);
        m_items.append(std::move(item));
        return m_items.last();
    }

    QStringList m_keys;
    QList<T> m_items;
    QHash<QString, qsizetype> m_places;
};

} // namespace scripting
