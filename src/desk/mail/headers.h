/// The header fields of a message or part, by what they mean.
#pragma once

#include "desk/mail/gmime.h"
#include "desk/mail/message.h"

namespace desk {

class CharsetHints;

class Headers {
  public:
    /// The fields of `object`. REQUIRES: both outlive this.
    Headers(GMimeObject *object, const CharsetHints &hints) : m_object(object), m_hints(hints) {}

    [[nodiscard]] bool has(const char *name) const;
    /// The raw values of the fields of that name, in their order.
    [[nodiscard]] QList<QByteArray> values(const char *name) const;
    [[nodiscard]] QString text(const char *name) const;
    /// All addresses of all fields of that name.
    [[nodiscard]] QList<Address> addresses(const char *name) const;
    /// Invalid when there is none or it can't be understood.
    [[nodiscard]] QDateTime date(const char *name) const;
    /// The first identifier, without its brackets. One that is too long for a line of mail is none.
    [[nodiscard]] QString identifier(const char *name) const;
    [[nodiscard]] QStringList identifiers(const char *name) const;
    /// By whichever of the fields says it: the standard one first.
    [[nodiscard]] Importance importance() const;
    [[nodiscard]] Sensitivity sensitivity() const;

  private:
    GMimeObject *m_object;
    const CharsetHints &m_hints;
};

/// The identifier without what can't stand in one: brackets, blanks, control characters.
QString cleanIdentifier(const QString &text);

/// The type in lower case where it is a proper one that is not multipart, else "application/octet-stream".
QString cleanMimeType(const QString &text);

/// The name of a character set without what can't stand in one.
QString cleanCharset(const QString &text);

} // namespace desk
