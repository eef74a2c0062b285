#include "desk/mail/mbox.h"

namespace desk {
namespace {

constexpr qint64 pieceLength = qint64{64} * 1024;

bool isEmptyLine(const QByteArray &line) { return line == "\n" || line == "\r\n"; }

/// "From ", somebody, and a time of day.
bool isPostmark(const QByteArray &line) {
    if (!line.startsWith("From "))
        return false;
    for (qsizetype at = line.indexOf(':', 6); at >= 0 && at + 2 < line.size(); at = line.indexOf(':', at + 1)) {
        const auto digit = [&](qsizetype i) { return line[i] >= '0' && line[i] <= '9'; };
        if (digit(at - 1) && digit(at + 1) && digit(at + 2))
            return true;
    }
    return false;
}

QByteArray unquoted(const QByteArray &line) {
    qsizetype marks = 0;
    while (marks < line.size() && line[marks] == '>')
        ++marks;
    return marks > 0 && QByteArrayView(line).sliced(marks).startsWith("From ") ? line.sliced(1) : line;
}

/// The value of a Content-Length line, -1 for any other line.
qint64 contentLength(const QByteArray &line) {
    static const QByteArray name = "content-length:";
    if (line.first(std::min(line.size(), name.size())).toLower() != name)
        return -1;
    bool valid = false;
    const qint64 length = line.mid(name.size()).trimmed().toLongLong(&valid);
    return valid && length >= 0 ? length : -1;
}

} // namespace

bool MboxReader::readLine() {
    m_atLineStart = m_lineEnds;
    m_line = m_device.readLine(pieceLength);
    m_lineEnds = m_line.endsWith('\n');
    // A device gives nothing at its end, and nothing where it fails.
    if (m_line.isEmpty())
        noteFailure();
    return !m_line.isEmpty();
}

void MboxReader::noteFailure() {
    if (!m_device.atEnd())
        m_failedAt = m_device.pos();
}

void MboxReader::append(QByteArray &message, bool &complete, const QByteArray &line) const {
    if (message.size() + line.size() > m_maximumSize) {
        complete = false;
        message = QByteArray();
    }
    if (complete)
        message += line;
}

bool MboxReader::endsAt(qint64 position) {
    if (position > m_device.size() || !m_device.seek(position))
        return false;
    QByteArray behind = m_device.readLine(pieceLength);
    if (isEmptyLine(behind))
        behind = m_device.readLine(pieceLength);
    // Also where it can't be read: the failure comes up once it is read for itself.
    return behind.isEmpty() || isPostmark(behind);
}

bool MboxReader::takeCounted(QByteArray &message, bool &complete, qint64 length) {
    const qint64 start = m_device.pos();
    const qint64 end = start + std::min(length, m_device.size());
    const bool counted = endsAt(end);
    complete = complete && (!counted || message.size() + length <= m_maximumSize);
    m_device.seek(counted && !complete ? end : start);
    if (counted && complete) {
        const QByteArray body = m_device.read(length);
        message += body;
        if (body.size() < length)
            noteFailure();
    }
    return counted;
}

bool MboxReader::next(QByteArray &message, bool &complete) {
    message.clear();
    complete = true;
    while (!m_havePostmark) {
        if (!readLine())
            return false;
        m_havePostmark = m_atLineStart && m_line.startsWith("From ");
    }
    m_havePostmark = false;
    bool inHeader = true;
    bool counted = false;
    bool empty = true;
    qint64 length = -1;
    while (readLine()) {
        if (m_atLineStart && (empty || counted) && isPostmark(m_line)) {
            m_havePostmark = true;
            break;
        }
        empty = m_atLineStart && isEmptyLine(m_line);
        counted = false;
        append(message, complete, m_atLineStart && !inHeader ? unquoted(m_line) : m_line);
        if (inHeader && m_atLineStart)
            length = std::max(length, contentLength(m_line));
        if (inHeader && empty) {
            inHeader = false;
            counted = length >= 0 && takeCounted(message, complete, length);
            empty = !counted;
        }
    }
    if (m_failedAt)
        return false;
    // The empty line at the end belongs to the file, not to the message.
    if (empty && !inHeader)
        message.chop(message.endsWith("\r\n") ? 2 : 1);
    if (!complete)
        message.clear();
    return true;
}

} // namespace desk
