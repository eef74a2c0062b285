#include "desk/store/correspondents.h"

#include "desk/store/connection.h"
#include "desk/store/storedtext.h"

#include <QCryptographicHash>

namespace desk {
namespace {

constexpr qint64 mostSenders = 100'000;
constexpr qint64 hour = 3600;
/// What is out of date goes a little at a time, so that no message waits for it.
constexpr int mostForgotten = 100;

/// `automatic_senders` has no row for an address whose last message was ordinary; a higher position is a later note.
/// `automatic_sent` has a row for each message to each address, `at` in seconds of universal time.
constexpr std::array<const char *, 4> tables = {
    "CREATE TABLE IF NOT EXISTS automatic_senders (position INTEGER PRIMARY KEY, address BLOB NOT NULL UNIQUE,"
    " kind INTEGER NOT NULL)",
    "CREATE TABLE IF NOT EXISTS automatic_sent (address BLOB NOT NULL, message BLOB NOT NULL, at INTEGER NOT NULL,"
    " PRIMARY KEY (address, message)) WITHOUT ROWID",
    "CREATE INDEX IF NOT EXISTS automatic_sent_by_time ON automatic_sent (at)",
    "CREATE INDEX IF NOT EXISTS automatic_sent_to ON automatic_sent (address, at)",
};

/// The hash of an address or a message's identifier: small whatever the text, and nobody reads others' addresses in it.
QByteArray keyFor(const QString &text) {
    return QCryptographicHash::hash(foldedKey(text.trimmed()).toUtf8(), QCryptographicHash::Sha256);
}

} // namespace

Connection &Correspondents::connection() { return *m_store.m_connection; }

bool Correspondents::hasTables() {
    if (!m_hasTables)
        m_hasTables = connection().value("SELECT 1 FROM sqlite_master WHERE name = 'automatic_sent_to'").has_value();
    return m_hasTables;
}

/// REQUIRES: in a writing transaction.
void Correspondents::makeTables() {
    if (hasTables())
        return;
    for (const char *table : tables)
        connection().once(table);
}

int Correspondents::lastKind(const QString &address) {
    if (address.trimmed().isEmpty() || !hasTables())
        return 0;
    const auto kind = connection().value("SELECT kind FROM automatic_senders WHERE address = :address",
                                         {{"address", keyFor(address)}});
    return kind ? kind->toInt() : 0;
}

void Correspondents::note(const QString &address, int kind) {
    if (address.trimmed().isEmpty() || lastKind(address) == kind)
        return;
    Transaction transaction(connection());
    makeTables();
    connection().run("DELETE FROM automatic_senders WHERE address = :address", {{"address", keyFor(address)}});
    if (kind != 0) {
        connection().run("INSERT INTO automatic_senders (address, kind) VALUES (:address, :kind)",
                         {{"address", keyFor(address)}, {"kind", kind}});
        connection().run("DELETE FROM automatic_senders WHERE position <="
                         " (SELECT max(position) FROM automatic_senders) - :most",
                         {{"most", mostSenders}});
    }
    transaction.commit();
    m_hasTables = true;
}

std::optional<QString> Correspondents::admit(const QStringList &addresses, const QString &messageId, int most,
                                             DateTime now) {
    // An hour to both sides: the wall clock is put back in autumn, and whatever it does nothing stays for ever.
    const qint64 moment = now.toQt().toSecsSinceEpoch();
    const qint64 from = moment - hour;
    const qint64 to = moment + hour;
    const QByteArray message = keyFor(messageId);
    Transaction transaction(connection());
    makeTables();
    connection().run("DELETE FROM automatic_sent WHERE (address, message) IN (SELECT address, message"
                     " FROM automatic_sent WHERE at <= :from OR at >= :to LIMIT :most)",
                     {{"from", from}, {"to", to}, {"most", mostForgotten}});
    for (const QString &address : addresses) {
        const auto others =
            connection().value("SELECT count(*) FROM automatic_sent WHERE address = :address"
                               " AND message <> :message AND at > :from AND at < :to",
                               {{"address", keyFor(address)}, {"message", message}, {"from", from}, {"to", to}});
        if (others && others->toLongLong() >= most)
            return address;
        connection().run("INSERT OR REPLACE INTO automatic_sent (address, message, at)"
                         " VALUES (:address, :message, :at)",
                         {{"address", keyFor(address)}, {"message", message}, {"at", moment}});
    }
    transaction.commit();
    m_hasTables = true;
    return std::nullopt;
}

} // namespace desk
