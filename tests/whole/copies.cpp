#include "whole/copies.h"

#include "support/plaintool.h"
#include "whole/mails.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <map>

namespace whole {
namespace {

struct Found {
    QList<QJsonObject> mails;
    QList<QJsonObject> tickets;
};

/// The numbers in `tblTickets`, by the ticket's subject.
std::map<QString, QStringList> rowsIn(const QString &file) {
    std::map<QString, QStringList> rows;
    for (const QStringList &row : plainTool(file, {"SELECT strTicketSubject, strTicketID FROM tblTickets"}))
        rows[row[0]] += row[1];
    return rows;
}

/// How often each ticket number was confirmed, from the mails that left.
std::map<QString, int> confirmationsIn(const QString &profile) {
    std::map<QString, int> sent;
    const QDir folder(profile + "/outgoing");
    for (const QString &name : folder.entryList({"*.eml"}, QDir::Files)) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        const qsizetype start = text.indexOf(QStringLiteral("Subject: Helpdesk Ticket {"));
        EXPECT_GE(start, 0) << name.toStdString();
        const qsizetype open = text.indexOf(u'{', start) + 1;
        ++sent[text.mid(open, text.indexOf(u'}', open) - open)];
    }
    return sent;
}

} // namespace

void Copies::open(int people) {
    command({"folder", "add", intake});
    settings({"set", "EmailFolders", intake});
    const Place &place = *this;
    for (int i = 0; i < people; ++i) {
        m_people.push_back(std::make_unique<Station>(place, QStringLiteral("Person %1").arg(i + 1),
                                                     QStringLiteral("profile-%1").arg(i + 1),
                                                     path("profile/public.store")));
        m_people.back()->startDesk();
    }
}

void Copies::deliverMails(int more) {
    if (more < 1)
        return;
    const QString folder = QStringLiteral("mails-%1").arg(m_mails);
    QDir().mkpath(path(folder));
    for (const int end = m_mails + more; m_mails < end; ++m_mails)
        write(folder + u'/' + subjectOf(m_mails) + ".eml", mailOf(m_mails));
    command({"deliver", "--folder", intake, path(folder)});
}

int Copies::flagCount() {
    int flags = 0;
    for (const QJsonValue item : list(intake))
        flags += item["subject"].toString() == flagSubject ? 1 : 0;
    return flags;
}

int Copies::workRows(int ticket) const {
    const QString statement = QStringLiteral("SELECT intWorkItemID FROM tblWork WHERE intTicketID = %1");
    return static_cast<int>(plainTool(path("program/Orvelle.mdb"), {statement.arg(ticket)}).size());
}

void Copies::waitForAll() {
    constexpr int leastPatience = 30000;
    constexpr int patienceForOne = 500;
    ASSERT_TRUE(waitFor([&] { return convertedCount() == m_mails; }, leastPatience + m_mails * patienceForOne))
        << convertedCount() << " of " << m_mails << " mails were converted";
}

void Copies::expectSilence(const Station &station) {
    EXPECT_EQ(station.orvelleErrors().toStdString(), "") << station.profile().toStdString();
}

void Copies::endAll() {
    for (const auto &person : m_people) {
        EXPECT_EQ(person->orvelle().state(), QProcess::Running);
        person->endOrvelle();
        EXPECT_EQ(person->orvelle().exitCode(), 0);
        expectSilence(*person);
    }
    for (const auto &person : m_people)
        person->endDesk();
}

void Copies::expectBooks() {
    // Reading each ticket's attachments takes a process each.
    constexpr int mostTicketsShown = 60;
    std::map<QString, Found> found;
    for (const QString &folder : {intake, intake + QStringLiteral("\\Converted"), deletedItems}) {
        for (const QJsonValue item : list(folder))
            found[item["subject"].toString()].mails += item.toObject();
    }
    for (const QJsonValue item : list(ticketFolder))
        found[item["subject"].toString()].tickets += item.toObject();
    const auto rows = rowsIn(path("program/Orvelle.mdb"));
    std::map<QString, int> confirmations;
    for (const auto &person : m_people) {
        for (const auto &[number, times] : confirmationsIn(person->profile()))
            confirmations[number] += times;
    }

    QSet<QString> numbers;
    for (int mail = 0; mail < m_mails; ++mail) {
        const QString subject = subjectOf(mail);
        SCOPED_TRACE(subject.toStdString());
        const Found &of = found[subject];
        ASSERT_EQ(of.mails.size(), 1);
        const QString mark = of.mails[0]["billingInformation"].toString();
        ASSERT_EQ(of.tickets.size(), 1) << "marked " << mark.toStdString();
        const QJsonObject &ticket = of.tickets[0];
        EXPECT_EQ(property(ticket, "Ticket ID"), mark);
        EXPECT_EQ(rows.contains(subject) ? rows.at(subject) : QStringList(), QStringList{mark});
        EXPECT_FALSE(numbers.contains(mark)) << mark.toStdString();
        numbers += mark;
        EXPECT_EQ(confirmations[mark], 1);
        EXPECT_EQ(ticket["attachments"].toInt(), attachmentsOf(mail));
        if (mail % (1 + m_mails / mostTicketsShown) == 0) {
            EXPECT_EQ(hashesOf(show(ticket["entryId"].toString())), hashesOf(mail));
        }
    }
}

} // namespace whole
