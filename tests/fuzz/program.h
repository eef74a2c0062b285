// A copy of the program for entries that need one: in English, with somebody there who takes every report silently.
#pragma once

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "platform/window/window.h"

#include <QCoreApplication>

namespace fuzz {

class Program {
  public:
    /// Never ended: its database could not be closed when the library's own variables are gone already.
    static Program &instance() {
        static Program *const program = new Program;
        return *program;
    }

    /// The texts of the reports with which the program ended; none when it went on.
    template <class Step>
    QStringList run(const Step &step) {
        const ProgramCopy::Scope scope(m_copy);
        m_asker->asked.clear();
        try {
            step();
        } catch (const ProcessEnd &) {
            m_copy.clear();
            begin();
        }
        return m_asker->asked;
    }

  private:
    Program() {
        if (!QCoreApplication::instance()) {
            static int argc = 1;
            static char name[] = "fuzz";
            static char *argv[] = {name, nullptr};
            static const QCoreApplication application(argc, argv);
        }
        begin();
    }

    struct Silent : window::Asker {
        window::Answer ask(const window::Question &question) override {
            asked += question.text;
            return question.cautious;
        }
        QString show(window::Sheet &sheet) override {
            asked += sheet.text;
            return sheet.cautious;
        }
        QStringList asked;
    };

    void begin() {
        const ProgramCopy::Scope scope(m_copy);
        window::asker = m_asker;
        LoadLanguages(1);
    }

    ProgramCopy m_copy;
    std::shared_ptr<Silent> m_asker = std::make_shared<Silent>();
};

} // namespace fuzz
