#include "orvelle/database/chooseconnection.h"

#include "orvelle/core/phrases.h"
#include "platform/window/window.h"

ProcessLocal<ChooseConnectionForm> frmChooseConnection;

namespace {

window::Field fncControl(window::Field::Kind kind, const char *name, const QString &caption, bool ticked) {
    window::Field field;
    field.kind = kind;
    field.name = name;
    field.caption = caption;
    field.value = ticked ? "1" : "0";
    return field;
}

} // namespace

void ChooseConnectionForm::ShowModal() {
    intConnectionOption = 0;
    blnLoadExampleData = false;

    window::Sheet sheet;
    sheet.name = "frmChooseConnection";
    sheet.title = LNGCHOOSECONNECTION;
    sheet.text = LNGSELECTDATABASECONNECTION;
    sheet.topMost = true;
    sheet.buttons = {{"cmdOK", LNGOK}};
    sheet.cautious = "cmdOK";
    // Servers are not offered while they can't be reached.
    sheet.fields.append(
        fncControl(window::Field::Kind::Option, "optNewAccessDatabase", LNGCREATENEWACCESSDATABASE, true));
    if (!blnHideExampleDataOption)
        sheet.fields.append(fncControl(window::Field::Kind::Check, "chkExampleData", LNGLOADEXAMPLEDATA, false));
    blnHideExampleDataOption = true;

    if (window::showSheet(sheet) != "cmdOK")
        return;
    if (sheet.value("optNewAccessDatabase") == "1")
        intConnectionOption = 1;
    blnLoadExampleData = sheet.value("chkExampleData") == "1";
}
