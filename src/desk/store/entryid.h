/// Entry identifiers: hexadecimal texts of 48 characters that name one folder or item among all stores.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace desk {

/// What an entry identifier says. Format, do not change: identifiers are kept outside the stores. 24 bytes: the marker
/// 0x00000000 for an item and 0x00000001 for a folder, the store's tag, the number with its highest byte first.
struct EntryId {
    enum class Kind : quint32 { Item = 0, Folder = 1 };
    static constexpr int tagBytes = 12;

    Kind kind = Kind::Item;
    /// The store's own 12 random bytes.
    QByteArray storeTag;
    qint64 number = 0;

    /// In upper case.
    [[nodiscard]] QString toText() const;
    /// In any case; nothing for a text that is no entry identifier.
    static std::optional<EntryId> parse(const QString &text);

    friend bool operator==(const EntryId &, const EntryId &) = default;
};

/// The identifier of a store: 40 hexadecimal characters, a fixed marker and the store's tag.
QString storeIdText(const QByteArray &storeTag);

} // namespace desk
