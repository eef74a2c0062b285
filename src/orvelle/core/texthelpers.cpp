// Texts: bodies, links, values.

#include "orvelle/core/texthelpers.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "platform/value/convert.h"

namespace {

/// Finds a part in a text from a place on; fails with 5 where it isn't.
qsizetype fncPlaceOf(const QString &strText, const QString &strPart, qsizetype lngFrom) {
    const qsizetype lngPlace = strText.indexOf(strPart, lngFrom);
    if (lngPlace < 0)
        throw Failure(failures::invalidCall, QStringLiteral("The text has no %1.").arg(strPart));
    return lngPlace;
}

/// Upper-cased letter by letter, so that places in it are places in the text.
QString fncUpperCase(QString strText) {
    for (QChar &character : strText)
        character = character.toUpper();
    return strText;
}

} // namespace

QString fncGetBody(const QString &strHTML) try {
    subTrace(QStringLiteral("Attempting to analyze a %1 long body of html text").arg(strHTML.size()));
    if (strHTML.size() <= 2)
        return {};
    const QString strUpper = fncUpperCase(strHTML);
    const qsizetype lngTag = strUpper.indexOf("<BODY");
    if (lngTag < 0)
        return {};
    const qsizetype lngStart = fncPlaceOf(strUpper, ">", lngTag) + 1;
    const qsizetype lngEnd = strUpper.indexOf("</BODY>", lngStart);
    return lngEnd < 0 ? strHTML : strHTML.mid(lngStart, lngEnd - lngStart);
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncGetBody");
}

QString fncNewTicketHTML() {
    return QStringList{"<html>",
                       "<head>",
                       "<style type=\"text/css\">",
                       "p {",
                       "font-size: 10pt;",
                       "font-family: Tahoma;",
                       "margin-bottom: -20;",
                       "}",
                       "h1 {",
                       "font-family: Tahoma;",
                       "font-size: large;",
                       "color: #0000FF;",
                       "text-decoration: underline;",
                       "font-weight: normal;",
                       "}",
                       "</style>",
                       "</head>",
                       "<body topmargin='0' leftmargin='0'>",
                       "",
                       "<h1>" + LNGPROBLEM + "</h1>",
                       "<p>[BODY]</p>",
                       "</p>&nbsp;</p>",
                       "</p>&nbsp;</p>",
                       "<h1>" + LNGSOLUTION + "</h1>",
                       "<p></p>",
                       "</p>&nbsp;</p>",
                       "</p>&nbsp;</p>",
                       "</body>",
                       "</html>"}
        .join(strLineEnd);
}

QString fncFirstLink(const QString &strText) {
    for (const QString strPrefix : {"http://", "ftp://", "\\\\", "file:", "www", "https://"}) {
        const qsizetype lngStart = strText.indexOf(strPrefix);
        if (lngStart < 0)
            continue;
        const qsizetype lngEnd = strText.indexOf(u' ', lngStart);
        return lngEnd < 0 ? strText.mid(lngStart) : strText.mid(lngStart, lngEnd - lngStart);
    }
    return {};
}

QString fncNullSafeText(const Value &value) {
    if (value.isNull() || value.isEmpty())
        return {};
    const QString strText = toText(value);
    return strText.startsWith(u'-') || strText.startsWith(u'+') ? "'" + strText : strText;
}
