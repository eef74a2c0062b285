/// `frmDummy`: the hidden form of a monitor run. Its being loaded keeps the run alive after `Main` has returned.
#pragma once

#include "orvelle/session/forms.h"
#include "platform/value/ref.h"

#include <QString>

class DummyForm : public LoadableForm {
  public:
    /// The window title by which another program finds the run.
    [[nodiscard]] QString Caption() const { return m_strCaption; }

  protected:
    void Form_Load() override { m_strCaption = "Client Window - Orvelle process"; }

  private:
    QString m_strCaption;
};

/// Nothing until it is first used, and after its release.
extern ProcessLocal<Ref<DummyForm>> frmDummy;
/// The one instance, made on first use.
Ref<DummyForm> fncDummyForm();
