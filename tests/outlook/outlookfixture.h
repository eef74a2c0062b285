// One copy of the program that has reached the desk, without a run.
#pragma once

#include "core/phrases.h"
#include "core/process.h"
#include "outlook/session.h"
#include "platform/registry/registry.h"
#include "platform/safeobjects/safeobjects.h"
#include "support/helpdesk.h"

class OutlookTest : public support::Helpdesk {
  protected:
    void SetUp() override {
        registry::fileOverride = path("registry.ini");
        strProgramFolderOverride = programFolder();
        runningHost = [this] { return desk().application(); };
        safeobjects::registerComponents([] { return onsMAPI->object(); });
        LoadLanguages(1);
        subStartOutlook(6);
        oufTickets = tickets();
    }
    void TearDown() override { m_copy.clear(); }

    template <class Step>
    static bool endsProcess(Step &&step) {
        try {
            step();
            return false;
        } catch (const ProcessEnd &) {
            return true;
        }
    }

    support::Answers &answers() { return m_answers; }

  private:
    ProgramCopy m_copy;
    ProgramCopy::Scope m_scope{m_copy};
    support::Answers m_answers;
};
