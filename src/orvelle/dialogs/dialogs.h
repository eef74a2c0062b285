/// Messages to the person through the host's assistant, with a message box in its place, and the looks of dialogs.
#pragma once

#include "orvelle/host/host.h"
#include "platform/controls/form.h"
#include "platform/window/window.h"

#include <QString>

/// Shows a message. Does nothing where the host is not there.
void subAssistantMessage(const host::Application &oua, const QString &strMessage);
/// Asks with Yes and No. \param intButtons  the message box's buttons where there is no assistant.
/// \return 6 for yes, 7 for no.
qint32 fncAssistantYesNo(const host::Application &oua, const QString &strMessage, qint32 intButtons = 4);
/// Asks with OK and Cancel. \return 1 for OK, 2 for cancel.
qint32 fncAssistantOKCancel(const host::Application &oua, const QString &strMessage);
/// Shows that work goes on; does not wait.
void subAssistantWorking(const host::Application &oua);

/// The Yes and No box with a check box that the answer be remembered.
class frmMessageBox {
  public:
    QString lblMessage;
    /// 1 when ticked.
    qint16 chkCheckBox = 0;

    /// Waits for the answer.
    void Show();
    /// 1 for yes, 0 for no.
    [[nodiscard]] qint16 fncResult() const { return m_intResult; }

  private:
    qint16 m_intResult = 0;
};

/// Keeps a window on top of the others.
class clsAlwaysOnTop {
  public:
    static void MakeNormal(controls::Form &frm);
    static void MakeTopMost(controls::Form &frm);
};

/// Gives a control the colour that the dialog really shows at the control's centre.
void subApplyBackColorToControl(const controls::Pixels &hDC, controls::Control &ctl);

/// Makes the classes of themed controls known to the system. Ours needs no such call.
void subInitCommonControls();
