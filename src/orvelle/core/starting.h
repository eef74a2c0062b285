/// Starting programs, and opening and printing files and links.
#pragma once

#include <QString>

/// Starts a web or mail link, or the companion program of that name: the one in `strPath`, else the one in the program
/// folder. What can't be started gets a message.
void subExecute(const QString &strFile, const QString &strArguments, const QString &strPath);
/// Runs a shell verb on a file, the default one when empty. A missing file or folder does nothing.
void subInvokeShellVerb(const QString &strFolder, const QString &strFile, const QString &strVerb = {});
void subPrintFile(const QString &strPath);
/// Opens a link in the program that the person chose for it. A failure is passed over.
void subOpenURL(const QString &strURL);
