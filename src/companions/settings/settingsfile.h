/// The text file that settings and lists are exported to and imported from.
///
/// Format, version 1: UTF-8; the first line is "# Orvelle settings 1". A line that begins with "#" is a comment, an
/// empty line means nothing, "[name]" begins a section. Every other line is one row: its fields with tabs between them.
/// Inside a field a backslash is written as "\\", a tab "\t", a line feed "\n", a carriage return "\r"; "\#" and "\["
/// are the signs themselves, "\e" is a row's only field that is empty. A section of a name that is not known is an
/// error. The last line is "[end]": a file that was cut off would otherwise look like one with shorter lists.
#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace settings {

/// `line` is where it stands in the file, from 1; 0 for one that was not read.
struct Row {
    QStringList fields;
    qsizetype line = 0;
};

struct Section {
    QString name;
    QList<Row> rows;
    qsizetype line = 0;
};

/// \param headings  for each section the comment that names its fields; may be empty.
QByteArray writeSections(const QList<Section> &sections, const QStringList &headings);

/// Fails with `failures::invalidCall` and the number of the line for anything that is not in the format.
QList<Section> readSections(const QByteArray &content);

/// The failure for a line that can't be taken.
[[noreturn]] void refuseLine(qsizetype line, const QString &problem);

} // namespace settings
