#include "orvelle/session/forms.h"

#include "platform/value/failure.h"

ProcessLocal<QList<LoadableForm *>> loadedForms;

LoadableForm::~LoadableForm() {
    // Another copy's list may be the current one by now, so only a form that is still loaded touches it.
    if (m_loaded)
        loadedForms->removeOne(this);
}

void LoadableForm::Load() {
    if (m_loaded)
        return;
    Form_Load();
    m_loaded = true;
    loadedForms->append(this);
}

void LoadableForm::Unload() {
    if (!m_loaded)
        return;
    Form_Unload();
    m_loaded = false;
    loadedForms->removeOne(this);
}

void subUnloadForms() {
    while (!loadedForms->isEmpty()) {
        const qsizetype before = loadedForms->size();
        Attempt([] { loadedForms->last()->Unload(); });
        if (loadedForms->size() >= before)
            return;
    }
}
