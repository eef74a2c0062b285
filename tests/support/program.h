// One copy of the program in a folder of its own, in English, with nobody at the display but the script.
#pragma once

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "platform/registry/registry.h"
#include "platform/scripting/path.h"
#include "support/answers.h"
#include "support/files.h"
#include "support/launches.h"
#include "support/steps.h"

#include <QTemporaryDir>

inline void PrintTo(const QString &text, std::ostream *out) { *out << '"' << text.toStdString() << '"'; }

namespace support {

/// Runs a step as the program runs it; gives whether it ended the process.
template <class Step>
bool endsProcess(Step &&step) {
    try {
        step();
    } catch (const ProcessEnd &) {
        return true;
    }
    return false;
}

/// The clock stands at noon of 5 March 2024, the region is the United States. A question that was not announced fails
/// the test, and so does an announced one that was not asked.
class Program : public testing::Test {
  protected:
    Program() {
        Region::set(QLocale(QLocale::English, QLocale::UnitedStates));
        Clock::set(DateTime{DateTime::fromDate(2024, 3, 5).days + 0.5});
        strProgramFolderOverride = scripting::pathText(m_folder.path());
        registry::fileOverride = path("registry.ini");
        LoadLanguages(1);
        processHooks->subReleaseAll = [this] { ++releases; };
        processHooks->ended = [this] { ++ends; };
    }
    ~Program() override {
        Clock::release();
        Region::set(std::nullopt);
    }

    /// The next question is the failure report of that procedure.
    void expectReport(const QString &strProcedure) { answers.expect(" : " + strProcedure + " ", window::No); }
    /// A file of the program folder, as the machine names it and as a path text.
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] QString at(const QString &name) const { return scripting::pathText(m_folder.path()) + "\\" + name; }
    [[nodiscard]] bool exists(const QString &name) const { return QFile::exists(path(name)); }
    [[nodiscard]] QByteArray bytes(const QString &name) const { return contentOf(path(name)); }
    void put(const QString &name, const QByteArray &content = {}) const { writtenFile(path(name), content); }

    QTemporaryDir m_folder;
    ProgramCopy m_copy;
    ProgramCopy::Scope m_scope{m_copy};
    Answers answers;
    Launches launches;
    /// How often the copy let go of everything, and how often it told that it has ended.
    int releases = 0;
    int ends = 0;
};

/// Runs a step in a program copy of its own, in English.
inline void inAnotherCopy(const std::function<void()> &step) {
    ProgramCopy other;
    {
        const ProgramCopy::Scope inside(other);
        LoadLanguages(1);
        step();
    }
    other.clear();
}

} // namespace support
