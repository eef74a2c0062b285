// Texts as texts in the messages of failed tests.
#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

// gtest finds these by the types' namespace, the global one.
inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QByteArray &bytes, std::ostream *out) {
    constexpr qsizetype shown = 400;
    *out << bytes.size() << " bytes \"" << bytes.first(std::min(bytes.size(), shown)).toStdString() << '"';
}
