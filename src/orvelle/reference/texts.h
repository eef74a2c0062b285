/// Small text rules that all lists share.
#pragma once

#include <QString>
#include <QStringList>

/// Without blanks at both ends. Only blanks: a tab or a line end stays.
QString fncTrim(const QString &strText);

/// Those that are more than blanks.
QStringList fncNotBlank(QStringList strTexts);

/// The first so many characters, or one less where that would keep half of a sign.
QString fncCut(const QString &strText, qsizetype lngCount);

/// The pieces between line ends; none for an empty text.
QStringList fncSplitLines(const QString &strText);

/// A text within quotes of a search criterion or of SQL: a quote in it is doubled.
QString fncQuoted(const QString &strText);

/// The nth part of a line; fails with 9 when the line has fewer.
QString fncPart(const QStringList &strParts, int intIndex);
