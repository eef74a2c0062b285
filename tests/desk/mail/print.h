// Texts as texts in the messages of failed tests, and rows of tables by their names.
#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>
#include <string>

// gtest finds these by the types' namespace, the global one.
inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QByteArray &bytes, std::ostream *out) {
    constexpr qsizetype shown = 400;
    *out << bytes.size() << " bytes \"" << bytes.first(std::min(bytes.size(), shown)).toStdString() << '"';
}

/// The name of a table's row, for INSTANTIATE_TEST_SUITE_P.
constexpr auto nameOfCase = [](const auto &row) { return std::string(row.param.name); };
