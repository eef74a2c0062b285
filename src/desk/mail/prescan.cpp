#include "desk/mail/prescan.h"

#include <QByteArrayView>

namespace desk {
namespace {

/// Lines that may be header fields or boundaries.
constexpr qint64 mostHeaderLines = 250'000;
/// Boundary lines, each counted once for every multipart that may be open there.
constexpr qint64 mostComparisons = 100'000'000;
/// The library opens no more multiparts inside one another than this.
constexpr qint64 mostOpenMultiparts = 1024;
constexpr qsizetype longestFieldName = 200;
/// What of a header field is kept for the library, which holds each several times over.
constexpr qsizetype longestField = qsizetype{1024} * 1024;
constexpr qsizetype longestFields = 8 * longestField;

class Lines {
  public:
    explicit Lines(QByteArrayView bytes) : m_bytes(bytes) {}

    bool next() {
        if (m_next >= m_bytes.size())
            return false;
        start = m_next;
        qsizetype end = m_bytes.indexOf('\n', start);
        if (end < 0)
            end = m_bytes.size();
        m_next = std::min(end + 1, m_bytes.size());
        line = m_bytes.sliced(start, end - start);
        endsInReturn = line.endsWith('\r');
        if (endsInReturn)
            line.chop(1);
        return true;
    }

    /// Where the next line starts.
    [[nodiscard]] qsizetype end() const { return m_next; }

    QByteArrayView line; ///< without its end
    qsizetype start = 0;
    bool endsInReturn = false;

  private:
    QByteArrayView m_bytes;
    qsizetype m_next = 0;
};

bool isField(QByteArrayView line) {
    const QByteArrayView front = line.first(std::min(line.size(), longestFieldName));
    qsizetype colon = front.indexOf(':');
    if (colon <= 0)
        return false;
    while (colon > 1 && (front[colon - 1] == ' ' || front[colon - 1] == '\t'))
        --colon;
    return std::all_of(front.begin(), front.begin() + colon, [](char c) { return c > ' ' && c < 0x7F; });
}

bool isPostmark(QByteArrayView line) { return line.startsWith("From ") || line.startsWith(">From "); }

/// Where the header begins: behind what does not belong to it.
qsizetype headerStart(QByteArrayView bytes) {
    Lines lines(bytes);
    while (lines.next()) {
        if (isField(lines.line))
            return lines.start;
        if (!lines.line.isEmpty() && !isPostmark(lines.line))
            break;
    }
    return -1;
}

bool isWellKnown(QByteArrayView line) {
    static constexpr std::array<QByteArrayView, 9> names = {
        "From:",        "To:",         "Subject:",      "Date:",        "Received:",
        "Return-Path:", "Message-ID:", "MIME-Version:", "Content-Type:"};
    return std::any_of(names.begin(), names.end(), [&](QByteArrayView name) {
        return line.first(std::min(line.size(), name.size())).compare(name, Qt::CaseInsensitive) == 0;
    });
}

/// A header behind lines that are none, when the lines up to the first empty one leave no doubt that it is one.
qsizetype buriedHeader(QByteArrayView bytes) {
    constexpr int linesLookedAt = 50;
    Lines lines(bytes);
    for (int i = 0; i < linesLookedAt && lines.next() && !lines.line.isEmpty(); ++i) {
        if (isWellKnown(lines.line))
            return lines.start;
    }
    return -1;
}

bool mentionsBoundary(QByteArrayView line) {
    const QByteArray lower = line.first(std::min<qsizetype>(line.size(), 10'000)).toByteArray().toLower();
    return lower.contains("boundary") || lower.contains("multipart");
}

/// Ends each line before what may be a boundary as the boundary itself ends. The library takes the end of the content
/// before a boundary for as long as the boundary's own, and would take a character too much or leave one.
QByteArray withEvenEnds(const QByteArray &bytes) {
    QByteArray result;
    qsizetype copied = 0;
    bool previous = false;
    Lines lines(bytes);
    while (lines.next()) {
        if (lines.line.startsWith("--") && lines.start > 0 && previous != lines.endsInReturn) {
            const qsizetype end = lines.start - (previous ? 2 : 1);
            result += QByteArrayView(bytes).sliced(copied, end - copied);
            result += lines.endsInReturn ? "\r\n" : "\n";
            copied = lines.start;
        }
        previous = lines.endsInReturn;
    }
    if (copied == 0)
        return bytes;
    result += QByteArrayView(bytes).sliced(copied);
    return result;
}

bool isFolded(QByteArrayView line) { return line.startsWith(' ') || line.startsWith('\t'); }

struct Range {
    qsizetype start, end;
};

/// Finds what of the header fields is too long.
class FieldLimit {
  public:
    /// To be told each line of a header. Lines that belong to no field stay. What looks like the header of a part may
    /// be text, so only what is very long goes there.
    void take(const Lines &lines, bool isFirstHeader) {
        const bool folded = isFolded(lines.line);
        if (!folded) {
            m_field = 0;
            m_inField = isField(lines.line);
        }
        if (!m_inField)
            return;
        const qsizetype room = std::min(longestField - m_field, isFirstHeader ? longestFields - m_all : longestField);
        const qsizetype kept = std::min(room, lines.line.size());
        if (kept == 0 && !lines.line.isEmpty())
            m_cuts.append({lines.start, lines.end()});
        else if (kept < lines.line.size())
            m_cuts.append({lines.start + kept, lines.start + lines.line.size()});
        m_field += kept;
        m_all += isFirstHeader ? kept : 0;
    }

    /// Takes out what is too long, and moves the positions that lie behind.
    void apply(Prescan &scan) const {
        if (m_cuts.isEmpty())
            return;
        QByteArray result;
        qsizetype copied = 0;
        qsizetype removed = 0;
        const qsizetype strayLine = scan.strayLine;
        const qsizetype affordable = scan.affordable;
        for (const Range &cut : m_cuts) {
            result += QByteArrayView(scan.bytes).sliced(copied, cut.start - copied);
            copied = cut.end;
            removed += cut.end - cut.start;
            scan.strayLine = strayLine >= cut.end ? strayLine - removed : scan.strayLine;
            scan.affordable = affordable >= cut.end ? affordable - removed : scan.affordable;
        }
        result += QByteArrayView(scan.bytes).sliced(copied);
        scan.bytes = result;
    }

  private:
    QList<Range> m_cuts;
    bool m_inField = false;
    qsizetype m_field = 0; ///< what is kept of the present field
    qsizetype m_all = 0;
};

/// Counts what the message costs, blanks NULs in headers and cuts fields that are too long.
void count(Prescan &scan) {
    Lines lines(scan.bytes);
    bool inHeader = true;
    bool inFirstHeader = true;
    FieldLimit fields;
    qint64 headerLines = 0;
    qint64 comparisons = 0;
    qint64 multiparts = 0;
    QList<Range> withNulls;
    scan.affordable = scan.bytes.size();
    while (lines.next()) {
        if (inHeader && lines.line.isEmpty()) {
            inHeader = inFirstHeader = false;
            continue;
        }
        const bool boundary = lines.line.startsWith("--");
        inHeader = inHeader || boundary;
        if (!inHeader)
            continue;
        headerLines += 1;
        comparisons += boundary ? std::min(multiparts, mostOpenMultiparts) : 0;
        multiparts += mentionsBoundary(lines.line) ? 1 : 0;
        if (headerLines > mostHeaderLines || comparisons > mostComparisons) {
            scan.affordable = lines.start;
            break;
        }
        if (inFirstHeader || multiparts > 0)
            fields.take(lines, inFirstHeader);
        if (lines.line.contains('\0'))
            withNulls.append({lines.start, lines.end()});
        if (inFirstHeader && scan.strayLine < 0 && !isFolded(lines.line) && !isField(lines.line))
            scan.strayLine = lines.start;
    }
    for (const Range &range : withNulls)
        std::replace(scan.bytes.begin() + range.start, scan.bytes.begin() + range.end, '\0', ' ');
    fields.apply(scan);
}

} // namespace

bool beginsWithHeader(QByteArrayView bytes) {
    Lines lines(bytes);
    return lines.next() && isField(lines.line);
}

Prescan prescan(const QByteArray &message) {
    Prescan scan;
    scan.bytes = message;
    if (!scan.bytes.contains('\n') && scan.bytes.contains('\r'))
        scan.bytes.replace('\r', '\n');
    qsizetype start = headerStart(scan.bytes);
    if (start < 0)
        start = buriedHeader(scan.bytes);
    scan.hasHeader = start >= 0;
    if (start > 0)
        scan.bytes.remove(0, start);
    if (scan.hasHeader)
        scan.bytes = withEvenEnds(scan.bytes);
    if (scan.hasHeader)
        count(scan);
    else
        scan.affordable = scan.bytes.size();
    return scan;
}

} // namespace desk
