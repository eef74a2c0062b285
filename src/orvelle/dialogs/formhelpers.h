/// What dialogs and forms do with their controls and windows.
#pragma once

#include "platform/controls/form.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/convert.h"
#include "platform/value/ref.h"

/// Fills a combo box with the keys of a dictionary; its value stays.
template <class T>
void subFillCombo(controls::Control &combo, const Ref<scripting::Dictionary<T>> &dic) {
    const QString strValue = toText(combo.Value());
    combo.Clear();
    combo.SetItems(dic->Keys());
    if (!strValue.isEmpty())
        combo.SetValue(strValue);
}

/// Shows a form in the taskbar and brings it forward.
void subEnsureVisibleTaskBar(controls::Form &frm, const QString &strTitle);
