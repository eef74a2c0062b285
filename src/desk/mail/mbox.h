/// The messages of an mbox file.
#pragma once

#include <QByteArray>
#include <QIODevice>

#include <optional>

namespace desk {

/// Reads an mbox as a stream; no more than one message is held at a time.
///
/// A message ends before a line that begins with "From ", tells a time, and follows an empty line or the start: a
/// sentence that begins so is no end, even where the writer did not quote it. Lines quoted by one or more '>' before
/// "From " lose one. A Content-Length that leads exactly to the next message or to the end is followed, and the body is
/// then left as it is.
class MboxReader {
  public:
    /// REQUIRES: `device` is open, can be searched, and outlives the reader.
    MboxReader(QIODevice &device, qint64 maximumSize) : m_device(device), m_maximumSize(maximumSize) {}

    /// The next message, without its "From " line. `complete` is false when it was longer than allowed; it is then
    /// passed over. False at the end, and where the device can't be read any further: what was begun there is no
    /// message.
    bool next(QByteArray &message, bool &complete);

    /// The position that could not be read; nothing while all could.
    [[nodiscard]] std::optional<qint64> failedAt() const { return m_failedAt; }

  private:
    /// The next line with its end; of a line longer than a piece, the next piece of it.
    bool readLine();
    void append(QByteArray &message, bool &complete, const QByteArray &line) const;
    /// Takes the body by its length when the next message or the end follows it. Otherwise reads nothing.
    bool takeCounted(QByteArray &message, bool &complete, qint64 length);
    /// Whether a message could end there. Moves the device.
    bool endsAt(qint64 position);
    /// To be called when less was read than wanted: notes where the device failed, unless that was its end.
    void noteFailure();

    QIODevice &m_device;
    qint64 m_maximumSize;
    QByteArray m_line;
    bool m_atLineStart = true;   ///< whether m_line begins a line
    bool m_lineEnds = true;      ///< whether m_line has its end
    bool m_havePostmark = false; ///< whether m_line is the line before the next message
    std::optional<qint64> m_failedAt;
};

} // namespace desk
