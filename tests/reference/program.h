/// Situations that most suites here start from: a copy of the program, alone or with a ticket database of its own.
///
/// A question that no test announced fails it, and so does an announced one that never comes.
#pragma once

#include "core/runtime.h"
#include "database/connection.h"
#include "database/creation.h"
#include "platform/registry/registry.h"
#include "reference/settings.h"
#include "support/answers.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }

/// A copy of the program with a program folder of its own, in English.
class ProgramTest : public ::testing::Test {
  protected:
    void SetUp() override {
        m_answers.emplace();
        strProgramFolderOverride = m_folder.path();
        registry::fileOverride = m_folder.filePath("registry.ini");
        LoadLanguages(1);
    }
    void TearDown() override {
        m_answers.reset();
        m_copy.clear();
        Clock::release();
    }

    /// The next question is answered. \param piece  of its text.
    void expectQuestion(const QString &piece, window::Answer answer = window::OK) { m_answers->expect(piece, answer); }
    /// The next question is the failure report of that procedure.
    void expectReport(const QString &strProcedure) { expectQuestion(" : " + strProcedure + " ", window::No); }
    /// The texts of all questions so far.
    [[nodiscard]] QStringList questions() const {
        QStringList texts;
        for (const window::Question &question : m_answers->asked())
            texts.append(question.text);
        return texts;
    }

    template <class Step>
    static bool endsProcess(Step &&step) {
        try {
            step();
            return false;
        } catch (const ProcessEnd &) {
            return true;
        }
    }
    /// The number of the failure that a step ends in; 0 for none.
    template <class Step>
    static qint32 failureOf(Step &&step) {
        const auto failure = Attempt(step);
        return failure ? failure->number() : 0;
    }

    [[nodiscard]] QString folder() const { return m_folder.path(); }

  private:
    QTemporaryDir m_folder;
    ProgramCopy m_copy;
    ProgramCopy::Scope m_scope{m_copy};
    std::optional<support::Answers> m_answers;
};

/// The same with an empty ticket database and the settings object.
class DatabaseTest : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        strDBFileName = "Orvelle.mdb";
        newDatabase();
    }

    /// Starts again with empty tables.
    void newDatabase() {
        subCloseConnection();
        strDBPath = folder() + "\\" + QString::number(++m_databases);
        QDir(folder()).mkdir(QString::number(m_databases));
        subCreateSettings();
        ASSERT_TRUE(fncCreateAccessDB(strDBPath + "\\Orvelle.mdb"));
    }

    static Ref<ado::Recordset> open(const QString &strSource) {
        return fncReturnRecordset(strSource, false, true, false);
    }

    using Values = QList<std::pair<QString, Value>>;
    static void addRow(const QString &strTable, const Values &values) {
        const auto table = open(strTable);
        table->AddNew();
        for (const auto &[column, value] : values)
            table->Fields(column).SetValue(value);
        table->Update();
    }
    static void fill(const QString &strTable, const QString &strColumn, const QStringList &texts) {
        for (const QString &text : texts)
            addRow(strTable, {{strColumn, text}});
    }

    /// Each row as a text: the columns parted by blanks, "Null" for Null.
    static QStringList rows(const QString &strSource, const QStringList &columns) {
        QStringList texts;
        const auto recordset = open(strSource);
        for (; !recordset->IsEOF(); recordset->MoveNext()) {
            QStringList values;
            for (const QString &column : columns) {
                const Value value = recordset->Fields(column).Value();
                values.append(value.isNull() ? QStringLiteral("Null") : toText(value));
            }
            texts.append(values.join(u' '));
        }
        return texts;
    }

  private:
    int m_databases = 0;
};
