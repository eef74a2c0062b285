// Several people with a profile and a copy of the program each, on shared public folders and one database: a mail
// folder that all of them monitor, numbered mails into it, and the books at the end.
#pragma once

#include "whole/processes.h"

#include <vector>

namespace whole {

const QString intake = QStringLiteral("\\\\Public Folders\\Intake");

class Copies : public Helpdesk {
  protected:
    /// Makes the people and starts their desks.
    void open(int people);
    [[nodiscard]] std::vector<std::unique_ptr<Station>> &people() { return m_people; }
    [[nodiscard]] int mails() const { return m_mails; }

    /// Delivers the next so many mails into the monitored folder.
    void deliverMails(int more);
    [[nodiscard]] int convertedCount() { return count(intake + QStringLiteral("\\Converted")); }
    [[nodiscard]] int flagCount();
    /// In the work log's table.
    [[nodiscard]] int workRows(int ticket) const;
    /// Waits until every delivered mail lies in "Converted".
    void waitForAll();
    /// Ends every program, then every desk, in the orderly way. No program may have said anything.
    void endAll();
    static void expectSilence(const Station &station);

    /// The books of all delivered mails: each has its ticket, its number, its row and its confirmation, once.
    void expectBooks();

  private:
    std::vector<std::unique_ptr<Station>> m_people;
    int m_mails = 0;
};

} // namespace whole
