#include "orvelle/dialogs/dialogs.h"

#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "platform/scripting/shell.h"

namespace {

/// Whether the host has turned out to have no assistant.
ProcessLocal<bool> blnNoAssistant;

constexpr qint32 intAlertOK = 0;
constexpr qint32 intAlertOKCancel = 1;
constexpr qint32 intAlertYesNo = 4;
constexpr qint32 intIconQuestion = 2;
constexpr qint32 intIconInformation = 4;

/// Brings the host's window to the front, so that the message is seen.
void subActivateHost(const host::Application &oua) {
    Attempt([&] {
        const host::Handle window = oua.ActiveWindow();
        // The shell reaches the windows of this process alone. One of another process comes forward by its own hand.
        if (!scripting::Shell().AppActivate(toText(window.get("Caption"))))
            window.call("Activate");
    });
}

host::Handle fncAssistant(const host::Application &oua) {
    host::Handle objAssistant = oua.get("Assistant");
    objAssistant.put("Visible", true);
    return objAssistant;
}

/// The assistant's answer in the message box's numbers; fails where there is no assistant.
qint32 fncDoAlert(const host::Application &oua, const QString &strMessage, qint32 intButtons, qint32 intIcon) {
    subTrace("Creating Assistant to display message " + strMessage);
    return toInt32(fncAssistant(oua).call(
        "DoAlert", {strProgramTitle, strMessage, intButtons, intIcon, qint32{0}, qint32{-1}, false}));
}

/// The assistant's answer, or that of a message box with the same text where there is no assistant.
qint32 fncAsk(const host::Application &oua, const QString &strMessage, qint32 intAlertButtons, qint32 intAlertIcon,
              window::Buttons buttons, window::Icon icon) {
    subActivateHost(oua);
    qint32 lngAnswer = 0;
    if (Attempt([&] { lngAnswer = fncDoAlert(oua, strMessage, intAlertButtons, intAlertIcon); }))
        lngAnswer = window::msgBox(strMessage, buttons, icon, strProgramTitle);
    return lngAnswer;
}

} // namespace

void subAssistantMessage(const host::Application &oua, const QString &strMessage) {
    if (oua.isNothing())
        return;
    fncAsk(oua, strMessage, intAlertOK, intIconInformation, window::Buttons::OK, window::Icon::Information);
}

qint32 fncAssistantYesNo(const host::Application &oua, const QString &strMessage, qint32 intButtons) {
    return fncAsk(oua, strMessage, intAlertYesNo, intIconQuestion, static_cast<window::Buttons>(intButtons),
                  window::Icon::None);
}

qint32 fncAssistantOKCancel(const host::Application &oua, const QString &strMessage) {
    return fncAsk(oua, strMessage, intAlertOKCancel, intIconQuestion, window::Buttons::OKCancel,
                  window::Icon::Question);
}

void subAssistantWorking(const host::Application &oua) {
    constexpr qint32 intAnimationWorking = 25;
    subTrace("Showing that the Assistant is working");
    // It comes with every mail, so a host that has no assistant is asked for it once.
    if (blnNoAssistant)
        return;
    subActivateHost(oua);
    const auto failure = Attempt([&] { fncAssistant(oua).put("Animation", intAnimationWorking); });
    if (failure && failure->number() == failures::memberMissing)
        blnNoAssistant = true;
}

void frmMessageBox::Show() {
    const QString cmdOK = QStringLiteral("cmdOK");
    const QString cmdCancel = QStringLiteral("cmdCancel");
    const QString chkName = QStringLiteral("chkCheckBox");
    window::Sheet sheet;
    sheet.name = QStringLiteral("frmMessageBox");
    sheet.title = strProgramTitle;
    sheet.topMost = true;
    sheet.fields = {
        {window::Field::Kind::Label, "lblMessage", lblMessage, {}, {}, {}},
        {window::Field::Kind::Check, chkName, "Remember this option next time", QString::number(chkCheckBox), {}, {}}};
    sheet.buttons = {{cmdOK, "Yes"}, {cmdCancel, "No"}};
    sheet.cautious = cmdCancel;
    m_intResult = window::showSheet(sheet) == cmdOK ? 1 : 0;
    chkCheckBox = sheet.value(chkName) == QStringLiteral("1") ? 1 : 0;
}

void clsAlwaysOnTop::MakeNormal(controls::Form &frm) { frm.SetTopMost(false); }

void clsAlwaysOnTop::MakeTopMost(controls::Form &frm) { frm.SetTopMost(true); }

void subApplyBackColorToControl(const controls::Pixels &hDC, controls::Control &ctl) {
    subTrace("Setting the background color of the control");
    std::optional<qint32> lngKept;
    const auto failure = Attempt([&] {
        lngKept = ctl.BackColor();
        const QRect place = ctl.place();
        if (const auto lngColor = hDC.GetPixel(place.x() + place.width() / 2, place.y() + place.height() / 2))
            ctl.SetBackColor(*lngColor);
    });
    if (failure && lngKept)
        Attempt([&] { ctl.SetBackColor(*lngKept); });
}

void subInitCommonControls() {}
