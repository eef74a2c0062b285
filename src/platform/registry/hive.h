/// The registry's content and its form on disk.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

namespace registry {

/// Texts by their full value paths, which match without regard to case.
///
/// On disk, do not change: UTF-8; a first line "orvelle registry 1"; one line "PATH=TEXT" for each value, in which "%"
/// and the control characters, and in the path "=", stand as "%" and two hexadecimal digits; a last line "end N" with
/// the number of values, by which a file that was cut is known.
class Hive {
  public:
    /// Nothing for a damaged file.
    static std::optional<Hive> parse(const QByteArray &bytes);
    [[nodiscard]] QByteArray serialize() const;

    [[nodiscard]] std::optional<QString> text(const QString &path) const;
    void set(const QString &path, const QString &text);
    /// False when it wasn't there.
    bool remove(const QString &path);

  private:
    struct Entry {
        QString path;
        QString text;
    };
    QMap<QString, Entry> m_entries;
};

} // namespace registry
