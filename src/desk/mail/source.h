/// Messages in files: one message, an mbox, a Maildir, or a folder of messages.
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class QIODevice;

namespace desk {

/// One message of a source: its bytes, or the reason why they could not be had.
struct SourceMessage {
    /// Where it came from, for reports: the file's path, and in an mbox the number of the message behind a '#'.
    QString name;
    QByteArray bytes;
    /// Empty when the message was read. A message with an error has no bytes; the ones behind it can still be read.
    QString error;
};

/// A run over the messages at a path, each read only when it is asked for.
///
/// What stands at the path is found out by looking: a folder with "cur" and "new" is a Maildir (the flags in its names
/// mean nothing here), any other folder is one of .eml files, taken with those of the folders below it in the order of
/// their paths; a file that begins with "From " is an mbox, any other file one message. Names may be any bytes: paths
/// are texts as `pathbytes.h` makes them. A folder below that can't be read is an error in its place.
class MessageSource {
  public:
    /// A longer message is reported as an error and passed over.
    static constexpr qint64 MaximumSize = qint64(256) * 1024 * 1024;

    /// Fails with 53 when nothing is there, or no message in a folder that is no Maildir, with 70 when it can't be
    /// read.
    static std::unique_ptr<MessageSource> open(const QString &path, qint64 maximumSize = MaximumSize);

    /// The messages of an mbox on a device that is open and can be searched. Where it can't be read any further, the
    /// last message is an error that tells the position.
    static std::unique_ptr<MessageSource> ofMbox(const QString &name, std::unique_ptr<QIODevice> device,
                                                 qint64 maximumSize = MaximumSize);

    virtual ~MessageSource() = default;
    MessageSource(const MessageSource &) = delete;
    MessageSource &operator=(const MessageSource &) = delete;

    /// The next message; false at the end.
    virtual bool next(SourceMessage &message) = 0;

  protected:
    MessageSource() = default;
};

} // namespace desk
