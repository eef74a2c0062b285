/// Helpers that the rest of the system leans on: component objects, starting programs, text files, paths, texts.
#pragma once

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/shell.h"
#include "platform/value/convert.h"
#include "platform/value/ref.h"
#include "platform/window/form.h"

#include <QString>

#include <concepts>

/// One for the process, made by `subSetupFS`.
extern ProcessLocal<Ref<scripting::FileSystemObject>> fsoFileSystem;

/// Makes `fsoFileSystem` where it isn't yet.
void subSetupFS();

/// Checks that the dictionary component is there; a missing one is reported.
void subSetupDic();
/// A new empty dictionary.
template <class T>
Ref<scripting::Dictionary<T>> fncCreateDic() {
    subSetupDic();
    return Ref<scripting::Dictionary<T>>::make();
}

/// A new shell object. A machine without one gets a message, and the process ends.
Ref<scripting::Shell> fncGetShell();

/// The text by which an item stands in a sorted dictionary: a text is its own, an object goes by its key.
template <class T>
QString fncSortText(const QString &strKey, const T &item) {
    if constexpr (std::convertible_to<T, QString>)
        return item;
    else
        return strKey;
}

/// The order of two texts by the region, without regard to case: below, at or above 0.
qint32 fncCompareText(const QString &strLeft, const QString &strRight);

/// The places of texts in that order.
QList<qsizetype> fncSortedPlaces(const QStringList &strTexts);

/// A new dictionary with the entries of `dic` in order, texts compared without regard to case.
/// \param intColumn  0 by the keys, 1 by the items.
template <class T>
Ref<scripting::Dictionary<T>> fncSortDictionary(const Ref<scripting::Dictionary<T>> &dic, qint16 intColumn,
                                                bool /*blnDates*/) {
    auto dicSorted = fncCreateDic<T>();
    QStringList strTexts;
    for (qsizetype i = 0; i < dic->Keys().size(); ++i) {
        const QString &strKey = dic->Keys().at(i);
        strTexts.append(intColumn == 0 ? strKey : fncSortText(strKey, dic->Items().at(i)));
    }
    for (const qsizetype lngPlace : fncSortedPlaces(strTexts))
        dicSorted->Add(dic->Keys().at(lngPlace), dic->Items().at(lngPlace));
    return dicSorted;
}

/// Starts a web or mail link, or the companion program of that name: the one in `strPath`, else the one in the program
/// folder. What can't be started gets a message.
void subExecute(const QString &strFile, const QString &strArguments, const QString &strPath);
/// Runs a shell verb on a file, the default one when empty. A missing file or folder does nothing.
void subInvokeShellVerb(const QString &strFolder, const QString &strFile, const QString &strVerb = {});
void subPrintFile(const QString &strPath);
/// Opens a link in the program that the person chose for it. A failure is passed over.
void subOpenURL(const QString &strURL);
/// As `subOpenURL`, with a message when it fails.
void subOpenLink(const QString &strURL);

/// Writes a text without its double quotes into a file, and gives the name that it was written under.
///
/// \param strFile  the file; with `blnRetry` or when empty, a name in the temp folder. Changed to the name used.
/// \param blnRetry  takes another name when the file is there and can't be deleted.
QString fncSaveTextFile(QString &strFile, const QString &strText, bool blnRetry);

/// The temp folder with long names.
QString fncGetTempPath();
/// Without one final "/" or "\".
QString fncNoTrailingSlash(const QString &strPath);
/// Up to and including the last "\". Fails with 5 where there is none.
QString fncFolderPart(const QString &strPath);
/// The folder's full path with long names.
QString fncLongFolderPath(const Ref<scripting::Folder> &folder);

/// What stands inside the body tags: empty for a text without a body, all of it for a body that doesn't end.
QString fncGetBody(const QString &strHTML);
/// The default ticket body, with its field "[BODY]".
QString fncNewTicketHTML();
/// The first web link by the order of the known prefixes, up to the next blank; empty where there is none.
QString fncFirstLink(const QString &strText);
/// Null and Empty give the empty text; a text that begins with "-" or "+" gets an apostrophe in front.
QString fncNullSafeText(const Value &value);

/// Whether a value is a change to what a field holds: Null never is, a value in place of Null always.
bool fncValueChanged(const Value &stored, const Value &value);
/// \param adrRS  a recordset with `Fields(name)`.
template <class Recordset>
bool fncFieldChanged(const Ref<Recordset> &adrRS, const QString &strField, const Value &value) {
    return fncValueChanged(adrRS->Fields(strField).Value(), value);
}

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
