/// `cSettings`: the one object through which the program knows its reference data and configuration.
#pragma once

#include "orvelle/core/folderreference.h"
#include "orvelle/database/connection.h"
#include "orvelle/reference/callers.h"
#include "orvelle/reference/othersettings.h"
#include "orvelle/reference/problemtypes.h"
#include "orvelle/reference/responsibles.h"
#include "orvelle/reference/simplelist.h"
#include "platform/value/processlocal.h"
#include "platform/value/ref.h"

#include <QLocale>

#include <functional>

namespace scripting {
class TextStream;
}

/// What is in the database's lists and settings, where the database is (`ReportTo`, `ReportToValue`), who uses the
/// program and in which language.
///
/// Invariant: the member objects are never Nothing.
class cSettings : public ReportTarget {
  public:
    /// Empty lists, and the defaults of the other settings.
    cSettings();

    Ref<cCallersList> Callers;
    Ref<cResponsibles> Responsibles;
    Ref<cSimpleList> Statuses;
    Ref<cSimpleList> CallerCategories;
    Ref<cProblemTypes> ProblemTypes;
    /// The person who uses the program.
    Ref<cResponsible> CurrentResponsible;
    Ref<cOtherSettings> OtherSettings;
    /// The monitored mail folders, by their paths.
    Ref<cSimpleList> EmailFolders;
    /// The saved reference to the ticket folder.
    Ref<cFolderReference> objFolder;
    /// From 1.
    qint16 CurrentSelectedLanguage = 1;

    /// Reads everything that is stored, the language included; false when there is no database. The connection stays
    /// open. A run loads its settings with `subGetSettings`.
    [[nodiscard]] bool ReadSettings();
    /// Who uses the program: the responsible of that name, or else one that has the name alone.
    void SetCurrentResponsible(const QString &strName);
    /// A new ticket's body around a description.
    [[nodiscard]] QString NewTicketHTML(const QString &ProblemDescription) const;
    /// Writes everything back. The connection stays open.
    void SaveSettings();
    /// Writes everything that a database holds to one that is not the shared connection's.
    void SaveTo(const Ref<ado::Connection> &connection) const;

    /// The language file, open for reading; made, holding "1", when it is not there. Nothing when it can't be opened.
    Ref<scripting::TextStream> fncGetSettingFile(const QString &strFilePath);
    void fncSetSettingFile(const QString &strLanguageFilePath, qint16 lngIndex);
    /// The language file's content without blanks at its ends; empty when it can't be read.
    QString fncGetlanguage();
    /// The language number; also sets `CurrentSelectedLanguage`. Fails with 13 when the file holds no number.
    qint16 fncReadLanguage();
    /// The folder of the ticket folder's home page, with its separator at the end.
    [[nodiscard]] QString fncGetFilePath() const;
    /// What stands behind the last separator of either kind; empty when there is none.
    [[nodiscard]] QString fncGetFileName(const QString &strLocation) const;

  private:
    using OpenTable = std::function<Ref<ado::Recordset>(const QString &)>;

    void ReadLists();
    void WriteLists(const OpenTable &open) const;
    void WriteOtherSettings(const OpenTable &open) const;

    /// Empty until the language was asked for.
    QString m_strLanguageFile;
};

/// By whose order the dates of work logs are written and read: the setting `Region`, the same for all copies of a
/// helpdesk; nothing for the machine's own. Known once the settings have been read.
extern ProcessLocal<std::optional<QLocale>> objWorkRegion;

/// The one settings object; Nothing until it is made.
extern ProcessLocal<Ref<cSettings>> objSettings;

/// Makes `objSettings` anew and names it to the database as the keeper of where the database is.
void subCreateSettings();
