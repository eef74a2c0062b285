/// The process-wide state that every folder of the system shares, and the two orderly ways to end.
///
/// What belongs to a higher folder (the settings, the toolbar, the connection) stands in that folder's module.
#pragma once

#include "orvelle/core/steps.h"
#include "orvelle/host/host.h"
#include "platform/value/processlocal.h"

#include <QString>

#include <functional>

/// The title of every message, of the reports and of the log.
inline constexpr char strProgramTitle[] = "Orvelle 9 for Outlook";
inline constexpr qint32 intVersionMajor = 9;
inline constexpr qint32 intVersionMinor = 2;
inline constexpr qint32 intVersionRevision = 402;
/// A line end of texts that are shown, mailed or stored.
inline constexpr char strLineEnd[] = "\r\n";

/// Nothing until the host is reached.
extern ProcessLocal<host::Application> ouaOutlook;
extern ProcessLocal<host::NameSpace> onsMAPI;
/// The folder that holds the tickets.
extern ProcessLocal<host::MAPIFolder> oufTickets;
extern ProcessLocal<QString> strCurrentUserName;
/// True while a ticket form is being filled, so that a window opened from inside that work is not taken for a new one.
extern ProcessLocal<bool> blnFormOpening;
/// Lets the connection open its dialogs when there is no database yet.
extern ProcessLocal<bool> blnAllowDBCreation;
extern ProcessLocal<QString> strDBFileName;
/// The program folder with a backslash at the end.
extern ProcessLocal<QString> strDBPath;

/// The folder of the program and its companions as a path text, without a backslash at the end: ORVELLE_HOME where that
/// is set, else the folder of the executable.
QString fncProgramFolder();
/// The program folder of this copy, in place of the rule above, when not empty. Tests set it.
extern ProcessLocal<QString> strProgramFolderOverride;

/// What the lower folders need from the top of the system. The program's entry sets it.
struct ProcessHooks {
    std::function<void()> subReleaseAll;
    /// Finds or starts the host; opens a window on the default folder of that number where there is none.
    std::function<void(qint32)> subStartOutlook;
    /// The copy has ended: nothing of it runs any more. Called once.
    std::function<void()> ended;

    ProcessHooks *operator->() { return this; }
};
extern ProcessLocal<ProcessHooks> processHooks;

/// Ends the process in the orderly way.
[[noreturn]] void subQuit();
/// Releases everything in the fixed order, each step whether or not the one before failed, and ends the process. Inside
/// a step of the run the steps unwind first, so that nothing is released under one of its own methods. A second call,
/// from inside the first or after it, only ends.
[[noreturn]] void subReleaseAll();
/// The release alone; once.
void subReleaseOnce();
/// True from the release on.
bool fncIsEnding();
