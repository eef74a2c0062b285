// One copy of the program that has reached the desk, without a run.
#pragma once

#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/session.h"
#include "platform/ado/jet/engine.h"
#include "platform/registry/registry.h"
#include "platform/safeobjects/safeobjects.h"
#include "support/helpdesk.h"

namespace support {

class Session : public Helpdesk {
  protected:
    void SetUp() override {
        ado::addJetEngine();
        registry::fileOverride = path("registry.ini");
        strProgramFolderOverride = programFolder();
        strDBPath = programFolder() + "\\";
        strDBFileName = "Orvelle.mdb";
        runningHost = [this] { return desk().application(); };
        safeobjects::registerComponents([] { return onsMAPI->object(); });
        LoadLanguages(1);
        subCreateSettings();
        subStartOutlook(6);
        oufTickets = tickets();
    }
    void TearDown() override { m_copy.clear(); }

    /// The next question is the failure report of that procedure.
    void expectReport(const QString &strProcedure) { answers.expect(" : " + strProcedure + " ", window::No); }

  private:
    ProgramCopy m_copy;
    ProgramCopy::Scope m_scope{m_copy};

  protected:
    Answers answers;
};

} // namespace support
