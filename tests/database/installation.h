// One copy of the program on an installation folder of its own, up to the point where the database is looked for.
#pragma once

#include "core/phrases.h"
#include "core/process.h"
#include "database/chooseconnection.h"
#include "database/connection.h"
#include "database/creation.h"
#include "database/upgrade.h"
#include "support/answers.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

class Installation : public ::testing::Test {
  protected:
    Installation() {
        strProgramFolderOverride = m_folder.path();
        LoadLanguages(1);
    }

    /// The steps of a start before the first access.
    static void start(bool mayCreate) {
        subFindDatabaseFile();
        strDBPath = fncProgramFolder() + "\\";
        blnAllowDBCreation = mayCreate;
    }
    /// What is to be had from the installation without a question; the database is created when it is not there.
    void startOnNewDatabase() {
        start(true);
        m_answers.expectSheet("frmChooseConnection", "cmdOK");
        subSetupConnection();
        ASSERT_TRUE(adoConnection.get());
    }

    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] bool exists(const QString &name) const { return QFile::exists(path(name)); }
    void put(const QString &name, const QByteArray &content) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(content) == content.size());
    }
    [[nodiscard]] QByteArray content(const QString &name) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QFile::ReadOnly));
        return file.readAll();
    }
    [[nodiscard]] QString fileConnection(const QString &name = "Orvelle.mdb") const {
        return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + m_folder.path() + "\\" + name;
    }

  private:
    QTemporaryDir m_folder;
    ProgramCopy m_copy;
    ProgramCopy::Scope m_scope{m_copy};

  protected:
    support::Answers m_answers{m_copy};
};
