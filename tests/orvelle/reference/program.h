// A copy of the program with an empty ticket database of its own and the settings object.
#pragma once

#include "orvelle/database/creation.h"
#include "orvelle/reference/settings.h"
#include "platform/ado/jet/engine.h"
#include "support/program.h"
#include "support/tables.h"

using ProgramTest = support::Program;
using support::addRow, support::endsProcess, support::fill, support::open, support::rows;

class DatabaseTest : public ProgramTest {
  protected:
    DatabaseTest() {
        ado::addJetEngine();
        strDBFileName = "Orvelle.mdb";
        newDatabase();
    }

    /// Starts again with empty tables.
    void newDatabase() {
        subCloseConnection();
        const QString name = QString::number(++m_databases);
        strDBPath = at(name);
        QDir(m_folder.path()).mkdir(name);
        subCreateSettings();
        EXPECT_TRUE(fncCreateAccessDB(strDBPath + "\\Orvelle.mdb"));
    }

  private:
    int m_databases = 0;
};
