// Any text is a work log: each of its pieces a row, read or blank; and what was read is written and read again without
// a difference. Only minutes that don't fit end the program, with its report.
//
// The first byte picks the region.
#include "fault.h"
#include "program.h"

#include "orvelle/ticket/worklog.h"

namespace {

const QString separator = QStringLiteral("\r\n====\r\n");

void setRegion(char which) {
    static const std::array<const char *, 8> names{"en_US", "en_GB", "de_DE", "sv_SE",
                                                   "el_GR", "tr_TR", "fi_FI", "ar_EG"};
    Region::set(QLocale(QString::fromLatin1(names[static_cast<unsigned char>(which) % names.size()])));
}

QStringList piecesOf(const QString &text) {
    QStringList pieces;
    qsizetype start = 0;
    for (qsizetype end = 0; end >= 0; start = end + separator.size()) {
        end = text.indexOf(separator, start);
        const QString piece = text.mid(start, end < 0 ? -1 : end - start);
        if (!piece.isEmpty())
            pieces += piece;
        if (end < 0)
            break;
    }
    return pieces;
}

bool fits(const QString &minutes) {
    const double number = isNumeric(minutes) ? roundHalfEven(toDouble(minutes)) : 0;
    return number >= std::numeric_limits<qint16>::min() && number <= std::numeric_limits<qint16>::max();
}

std::string faultOfRow(const QString &piece, const cWorkDescription &row) {
    const QStringList parts = piece.split(u'\t');
    const bool isWhole = parts.size() == 4;
    if (row.Description != (isWhole ? parts[0] : QString()) || row.User != (isWhole ? parts[3] : QString()))
        return "a text of the row is not the piece's: " + piece.toStdString();
    if ((!isWhole || !isNumeric(parts[2])) && row.Minutes != 0)
        return "minutes out of nothing: " + piece.toStdString();
    if ((!isWhole || !isDate(parts[1])) && row.WorkDate != DateTime{})
        return "a date out of nothing: " + piece.toStdString();
    return {};
}

std::string faultOfLog(const QStringList &pieces, const cWorkDescs &log) {
    const auto &rows = log.dicWorkDesc->Items();
    if (rows.size() != pieces.size())
        return std::to_string(rows.size()) + " rows from " + std::to_string(pieces.size()) + " pieces";
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (const std::string fault = faultOfRow(pieces[i], *rows[i]); !fault.empty())
            return fault;
    }
    // The one end of a text that runs into the separator behind it.
    if (!pieces.isEmpty() && pieces.last().endsWith(separator.chopped(2)))
        return {};
    const QString written = log.ToString();
    cWorkDescs again;
    again.FromString(written);
    if (again.ToString() != written)
        return "written as\n" + written.toStdString() + "\nand again as\n" + again.ToString().toStdString();
    return {};
}

} // namespace

std::string faultOf(const QByteArray &bytes) {
    static fuzz::Program &program = fuzz::Program::instance();
    setRegion(bytes.isEmpty() ? '\0' : bytes.front());
    const QString text = QString::fromUtf8(bytes.mid(1));
    const QStringList pieces = piecesOf(text);
    const bool allFit = std::all_of(pieces.begin(), pieces.end(), [](const QString &piece) {
        const QStringList parts = piece.split(u'\t');
        return parts.size() != 4 || fits(parts[2]);
    });
    std::string fault;
    const QStringList reports = program.run([&] {
        cWorkDescs log;
        log.FromString(text);
        fault = faultOfLog(pieces, log);
        const auto failure = Attempt([&] { static_cast<void>(log.MinutesTotal()); });
        if (failure && failure->number() != failures::overflow)
            fault = "the sum failed: " + failure->description().toStdString();
    });
    Region::set(std::nullopt);
    if (reports.size() != (allFit ? 0 : 1) || (!allFit && !reports[0].contains("cWorkDescription.FromString")))
        return "reported: " + reports.join(u'\n').toStdString();
    return fault;
}
