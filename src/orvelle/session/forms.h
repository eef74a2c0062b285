/// The forms of this program that are loaded. A run stays alive as long as one is, whether it is shown or not.
#pragma once

#include "platform/value/processlocal.h"

#include <QList>

/// A form that can be loaded: a window of the program, or a hidden one that only works in the background.
class LoadableForm {
  public:
    LoadableForm() = default;
    virtual ~LoadableForm();
    LoadableForm(const LoadableForm &) = delete;
    LoadableForm &operator=(const LoadableForm &) = delete;

    [[nodiscard]] bool isLoaded() const { return m_loaded; }
    /// Nothing when it is loaded already.
    void Load();
    /// Nothing when it is not loaded. What `Form_Unload` fails with leaves the form loaded.
    void Unload();

  protected:
    virtual void Form_Load() {}
    virtual void Form_Unload() {}

  private:
    bool m_loaded = false;
};

/// In the order of their loading.
extern ProcessLocal<QList<LoadableForm *>> loadedForms;

/// Unloads the forms from the last to the first; stops at one that stays loaded.
void subUnloadForms();
