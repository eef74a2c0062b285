/// The spine of the program: the entry procedure, the kinds of run, and the order in which everything is brought up.
///
/// A monitor run (no command line, or a language number, and no other instance) attaches to the active Explorer and
/// stays. A bystander run (another instance is there) does the shared first steps and ends. A first run builds the
/// database and ends. A ticket run ("Ticket") makes a ticket from the selected or open mail and ends.
#pragma once

#include "orvelle/host/host.h"
#include "platform/value/processlocal.h"

#include <QString>

/// The command line of a ticket run.
inline constexpr char strTicketCommand[] = "Ticket";

/// Whether another process of this program is running. Set before `Main`.
extern ProcessLocal<bool> blnPreviousInstance;

/// The entry procedure. A run stays alive after it as long as a form is loaded.
void Main(const QString &strCommand);

/// Attaches the run to an Explorer: toolbar, sent mail, and the form that keeps the run alive.
void subSetupOutlookMonitor(const host::Explorer &oue);

/// Whether there is neither a database file nor a file that names a database. Sets `strDBPath`.
bool fncIsFirstRun();

/// Makes a ticket from the selected or open mail, or files it under the ticket that its subject names, and offers to
/// open the ticket.
void subCreateTicketFromSelected();

/// Gives items that carry a form of their own the ticket class again. Never fails.
void subRepairOneOffForms();

/// Deletes the report files that earlier versions left below the program folder.
void subRemoveOldReportFiles();

/// The steps of `subReleaseAll` but its last, the end: forms, connection and process-wide objects in their order, each
/// whether or not the one before failed.
void subReleaseObjects();
