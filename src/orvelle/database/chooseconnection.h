/// The dialog of a first start that asks what kind of database the helpdesk is to use.
#pragma once

#include "platform/value/processlocal.h"

#include <QString>

/// One instance a run. Its fields survive a showing.
class ChooseConnectionForm {
  public:
    /// What was chosen: 0 none, 1 a new database file, 2 a new database on a server, 3 an existing one on a server.
    qint16 intConnectionOption = 0;
    /// The script that creates a database on a server, as the third option's text names it.
    QString strSQLScriptFileName;
    /// Whether example data is wanted.
    bool blnLoadExampleData = false;
    /// Hides the question for example data. A showing sets it, so the question comes once.
    bool blnHideExampleDataOption = false;

    /// Asks, modally. Where nobody can be asked, the preselected first option is taken.
    void ShowModal();
};

extern ProcessLocal<ChooseConnectionForm> frmChooseConnection;
