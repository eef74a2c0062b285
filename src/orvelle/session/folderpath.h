/// Folders as path texts, such as `\\Public Folders\Helpdesk\Tickets`, and folders that the person picks.
#pragma once

#include "orvelle/host/folders.h"
#include "platform/controls/form.h"

#include <QString>

/// The path of a folder. What stands above a folder that can't be read is left out.
QString fncGetFolderPath(const host::MAPIFolder &ouf, const host::NameSpace &ons);

/// The folder at a path; a single word is the name of a person, whose Inbox it gives. Nothing when there is none.
host::MAPIFolder fncGetFolderFromPath(const QString &strPath);

/// Lets the person pick a folder; Nothing on cancel. The form, where one is given, comes to the front again afterwards.
host::MAPIFolder fncPickFolder(controls::Form *frmFormToReactiveate);
