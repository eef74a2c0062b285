/// What dialogs and forms do with their controls and windows.
#pragma once

#include "platform/scripting/dictionary.h"
#include "platform/value/convert.h"
#include "platform/value/ref.h"
#include "platform/window/form.h"

#include <concepts>

/// A list box with a value of its own.
template <class T>
concept ComboBox = requires(T combo, const QString &text) {
    { combo.Value() } -> std::convertible_to<Value>;
    combo.SetValue(text);
    combo.Clear();
    combo.AddItem(text);
};

/// Fills a combo box with the keys of a dictionary; its value stays.
template <ComboBox Combo, class T>
void subFillCombo(Combo &combo, const Ref<scripting::Dictionary<T>> &dic) {
    const QString strValue = toText(combo.Value());
    combo.Clear();
    for (const QString &strKey : dic->Keys())
        combo.AddItem(strKey);
    if (!strValue.isEmpty())
        combo.SetValue(strValue);
}

/// Shows a form in the taskbar and brings it forward.
void subEnsureVisibleTaskBar(window::Form &frm, const QString &strTitle);
