// One copy of the program on an installation folder of its own, up to the point where the database is looked for.
#pragma once

#include "orvelle/database/chooseconnection.h"
#include "orvelle/database/connection.h"
#include "orvelle/database/creation.h"
#include "orvelle/database/upgrade.h"
#include "platform/ado/jet/engine.h"
#include "support/program.h"

class Installation : public support::Program {
  protected:
    Installation() { ado::addJetEngine(); }

    /// The steps of a start before the first access.
    static void start(bool mayCreate) {
        ado::addJetEngine();
        subFindDatabaseFile();
        strDBPath = fncProgramFolder() + "\\";
        blnAllowDBCreation = mayCreate;
    }
    /// What is to be had from the installation without a question; the database is created when it is not there.
    void startOnNewDatabase() {
        start(true);
        answers.expectSheet("frmChooseConnection", "cmdOK");
        subSetupConnection();
        ASSERT_TRUE(adoConnection.get());
    }
    [[nodiscard]] QString fileConnection(const QString &name = "Orvelle.mdb") const {
        return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + at(name);
    }
};
