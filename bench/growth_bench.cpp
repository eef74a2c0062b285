// Whether a mail's road to its ticket gets longer with the number of tickets: mails a second through the program in a
// process of its own, each ticket with its folder and the mails in it, as a helpdesk has them after some years.
//
// The first mail goes the whole road; what it left behind is then multiplied in the files. ORVELLE_BENCH_MAILS gives
// the number of mails measured (default 200), ORVELLE_BENCH_TICKETS the numbers of tickets ("1000,10000,20000").

#include "helpdesk.h"

#include "desk/mail/composer.h"
#include "platform/value/failure.h"

#include <sqlite3.h>

#include <QCoreApplication>

#include <cstdio>

namespace {

/// A file's rows, multiplied.
class Copier {
  public:
    explicit Copier(const QString &file) {
        sqlite3_open(file.toUtf8().constData(), &m_database);
        sqlite3_busy_timeout(m_database, 10000);
        run("PRAGMA synchronous = OFF; BEGIN IMMEDIATE");
    }
    ~Copier() {
        run("COMMIT");
        sqlite3_close(m_database);
    }
    Copier(const Copier &) = delete;
    Copier &operator=(const Copier &) = delete;

    void run(const QString &sql) {
        char *reason = nullptr;
        if (sqlite3_exec(m_database, sql.toUtf8().constData(), nullptr, nullptr, &reason) != SQLITE_OK)
            throw Failure(failures::unspecified, QStringLiteral("%1: %2").arg(sql, QString::fromUtf8(reason)));
    }

    [[nodiscard]] QStringList column(const QString &sql) {
        QStringList values;
        const auto keep = [](void *list, int, char **texts, char **) {
            *static_cast<QStringList *>(list) += QString::fromUtf8(texts[0]);
            return 0;
        };
        sqlite3_exec(m_database, sql.toUtf8().constData(), keep, &values, nullptr);
        return values;
    }

    /// Copies the rows that meet the condition under the numbers from `first` to `last`, each as `n`. The columns named
    /// are given their terms; the primary key of a table that makes its own is left out.
    void copy(const QString &table, const QString &condition, int first, int last, const QHash<QString, QString> &terms,
              const QString &leftOut = {}) {
        QStringList names;
        QStringList values;
        for (const QString &name : column("SELECT name FROM pragma_table_info('" + table + "')")) {
            if (name == leftOut)
                continue;
            names += u'"' + name + u'"';
            values += terms.value(name, u'"' + name + u'"');
        }
        run(QStringLiteral("WITH RECURSIVE numbers(n) AS (SELECT %1 UNION ALL SELECT n + 1 FROM numbers WHERE n < %2) "
                           "INSERT INTO \"%3\" (%4) SELECT %5 FROM \"%3\", numbers WHERE %6")
                .arg(first)
                .arg(last)
                .arg(table, names.join(u','), values.join(u','), condition));
    }

  private:
    sqlite3 *m_database = nullptr;
};

/// Room for the numbers of all that belongs to one ticket.
constexpr int numbersOfTicket = 1000;
/// Above all numbers that the first mail used.
constexpr int firstNumber = 1000000;

QString numberOf(const QString &column) {
    return QStringLiteral("%1 + n * %2 + %3").arg(firstNumber).arg(numbersOfTicket).arg(column);
}

/// The item of ticket 1, its folder "1", the folders in that and their mails, for the tickets from `first` to `last`.
void copyItems(const QString &file, int first, int last) {
    Copier store(file);
    const QString ticketFolder = store.column("SELECT id FROM folders WHERE name = '1'").value(0);
    const QString parent = store.column("SELECT parent FROM folders WHERE id = " + ticketFolder).value(0);
    const QString below = "SELECT id FROM folders WHERE parent = " + ticketFolder;
    store.copy("folders", "id = " + ticketFolder, first, last, {{"id", numberOf("id")}, {"name", "n"}});
    store.copy("folders", "parent = " + ticketFolder, first, last,
               {{"id", numberOf("id")}, {"parent", numberOf("parent")}});
    const QString mails = "folder IN (" + below + ")";
    const QString ticket = "folder = " + parent;
    const QHash<QString, QString> moved{{"id", numberOf("id")},
                                        {"item", numberOf("item")},
                                        {"arrival", numberOf("arrival")},
                                        {"folder", numberOf("folder")}};
    const QHash<QString, QString> kept{
        {"id", numberOf("id")},
        {"item", numberOf("item")},
        {"arrival", numberOf("arrival")},
        {"value", "CASE WHEN name = 'Ticket ID' THEN CAST(n AS TEXT) ELSE value END"},
        {"value_key", "CASE WHEN name = 'Ticket ID' THEN CAST(n AS TEXT) ELSE value_key END"}};
    for (const char *part : {"bodies", "originals", "attachments"}) {
        store.copy(part, "item IN (SELECT id FROM items WHERE " + mails + " AND id < 1000000)", first, last, moved);
        store.copy(part, "item IN (SELECT id FROM items WHERE " + ticket + " AND id < 1000000)", first, last, moved);
    }
    store.copy("properties", mails + " AND item < 1000000", first, last, moved);
    store.copy("properties", ticket + " AND item < 1000000", first, last, kept);
    store.copy("items", mails + " AND id < 1000000", first, last, moved);
    store.copy("items", ticket + " AND id < 1000000", first, last, kept);
    store.run(
        QStringLiteral("UPDATE store SET sequence = %1 + %2 * %3").arg(firstNumber).arg(last + 1).arg(numbersOfTicket));
}

void copyRows(const QString &file, int first, int last) {
    Copier database(file);
    const QString key = database.column("SELECT name FROM pragma_table_info('tblTickets') WHERE pk = 1").value(0);
    database.copy("tblTickets", "\"" + key + "\" = 1", first, last, {{"strTicketID", "CAST(n AS TEXT)"}}, key);
}

QByteArray mail(int number) {
    desk::Message message;
    message.subject = QStringLiteral("Request %1").arg(number);
    message.from = {"Person " + QString::number(number % 50), QStringLiteral("p%1@example.org").arg(number % 50)};
    message.to = {{"Helpdesk", "helpdesk@example.org"}};
    message.text = QStringLiteral("The printer does not print, and has not since yesterday.\r\n").repeated(10);
    return desk::composeMessage(message);
}

int run() {
    const int count = numberFrom("ORVELLE_BENCH_MAILS", 200);
    Situation situation;
    situation.set("EmailSubFolders", "1");
    const OtherProcess orvelle(situation);
    if (!orvelle.isWatching()) {
        std::fprintf(stderr, "orvelle did not start watching\n");
        return 1;
    }
    Feeder feeder(situation.mailboxFile());
    int number = 0;
    const auto convertMore = [&](int mails) {
        return convert(situation, mails, [&](int) { feeder.put(mail(number++)); });
    };
    static_cast<void>(convertMore(1));
    int tickets = 1;
    for (const QString &wanted : qEnvironmentVariable("ORVELLE_BENCH_TICKETS", "1000,10000,20000").split(u',')) {
        const int more = wanted.toInt();
        if (more <= tickets)
            continue;
        copyItems(situation.path("profile/public.store"), tickets + 1, more);
        copyRows(situation.path("program/Orvelle.mdb"), tickets + 1, more);
        tickets = more;
        const Result result = convertMore(count);
        std::printf("%6d tickets: %6.1f mails/s, floor %6.1f mails/s\n", tickets, 1 / result.secondsPerMail,
                    1 / Floor().replay(result.work));
        std::fflush(stdout);
        tickets += count;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    return run();
}
