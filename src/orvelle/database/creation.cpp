#include "orvelle/database/creation.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "orvelle/database/connection.h"
#include "platform/ado/jet/file.h"
#include "platform/scripting/path.h"
#include "platform/window/window.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QUuid>

namespace {

constexpr qint16 intTextSize = 255;
constexpr qint32 dbVersion = dao::dbVersion40;

/// Adds columns to one table.
class Columns {
  public:
    explicit Columns(const Ref<dao::TableDef> &objTableDef) : m_objTableDef(objTableDef) {}

    Columns &add(const char *strName, qint16 intType, const QString &strCaption) {
        subDAOAddField(m_objTableDef, strName, strCaption, intType, intTextSize);
        return *this;
    }

  private:
    const Ref<dao::TableDef> &m_objTableDef;
};

/// Runs steps that go on after a failing one.
class Steps {
  public:
    template <std::invocable Step>
    void run(Step &&step) {
        if (Attempt(std::forward<Step>(step)))
            m_good = false;
    }
    [[nodiscard]] bool good() const { return m_good; }

  private:
    bool m_good = true;
};

void subAddPersons(const Ref<dao::Database> &objDatabase) {
    const Ref<dao::TableDef> objTableDef =
        fncDAOAddTable(objDatabase, "tblPersons", "intPersonID", LNGRESPONSIBLE + " ID");
    Columns(objTableDef)
        .add("strPersonName", dao::dbText, LNGNAME)
        .add("curRate", dao::dbCurrency, LNGRATE)
        .add("strEmail", dao::dbText, LNGEMAIL);
}

void subAddTickets(const Ref<dao::Database> &objDatabase) {
    const Ref<dao::TableDef> objTableDef = fncDAOAddTable(objDatabase, "tblTickets", "intTicketID", LNGTICKETID);
    Columns(objTableDef)
        .add("strTicketSubject", dao::dbText, LNGSUBJECT)
        .add("strDescription", dao::dbMemo, LNGDESCRIPTION)
        .add("intTicketType", dao::dbInteger, LNGPROBLEMTYPE + " ID")
        .add("strCustomerName", dao::dbText, LNGCALLER)
        .add("strCustomerEmail", dao::dbText, LNGEMAIL)
        .add("intPriority", dao::dbInteger, LNGPRIORITY)
        .add("dteCreated", dao::dbDate, LNGCREATEDAT)
        .add("dteClosed", dao::dbDate, LNGCLOSED + " " + LNGDATE)
        .add("intAssignedTo", dao::dbInteger, LNGRESPONSIBLE + " ID")
        .add("blnClosed", dao::dbBoolean, LNGCLOSED)
        .add("intMinutesWorked", dao::dbInteger, LNGMINUTES)
        .add("strCustomerPhone", dao::dbText, LNGCALLER + " " + LNGPHONE)
        .add("strCustomerCategory", dao::dbText, LNGCALLERCATEGORY)
        .add("curRate", dao::dbCurrency, LNGRATE);
}

void subAddTypes(const Ref<dao::Database> &objDatabase) {
    const Ref<dao::TableDef> objTableDef =
        fncDAOAddTable(objDatabase, "tblTypes", "intTicketType", LNGPROBLEMTYPE + " ID");
    Columns(objTableDef)
        .add("strTypeDescription", dao::dbText, LNGPROBLEMTYPE)
        .add("strCategory", dao::dbText, LNGPROBLEMCATEGORY)
        .add("intDefMin", dao::dbInteger, LNGMINUTES);
}

} // namespace

bool fncCreateAccessDB(const QString &strPath) {
    const Ref<dao::Database> objDatabase = fncCreateV7DB(strPath);
    if (!fncAddTicketColumns(objDatabase) || !fncAddReferenceTables(objDatabase))
        return false;
    objDatabase->Close();
    return true;
}

Ref<dao::Database> fncCreateV7DB(const QString &strPath) try {
    subTrace("Creating a new DAO.DBEngine");
    const auto objEngine = Ref<dao::DBEngine>::make();
    subTrace("Creating version ORVL V7 database at " + strPath);
    const Ref<dao::Database> objDatabase =
        objEngine->CreateDatabase(strPath, ";LANGID=0x0409;CP=1252;COUNTRY=0", dbVersion);
    subAddPersons(objDatabase);
    subAddTickets(objDatabase);
    subAddTypes(objDatabase);
    return objDatabase;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncCreateV7DB");
}

bool fncAddTicketColumns(const Ref<dao::Database> &objDatabase) {
    Ref<dao::TableDef> objTableDef;
    Steps steps;
    steps.run([&] { objTableDef = objDatabase->FindTableDef("tblTickets"); });
    const auto add = [&](const char *strName, qint16 intType, const QString &strCaption) {
        steps.run([&] { subDAOAddField(objTableDef, strName, strCaption, intType, intTextSize); });
    };
    add("strMonthName", dao::dbText, LNGMONTH);
    add("strWeekdayName", dao::dbText, LNGDAY);
    add("intMinutesOpen", dao::dbInteger, {});
    add("strDescriptionHTML", dao::dbMemo, LNGDESCRIPTION + " HTML");
    add("strTicketStatus", dao::dbText, LNGSTATUS);
    add("strCustomerComment", dao::dbText, LNGCOMMENT);
    add("strTicketID", dao::dbText, LNGTICKETID);
    return steps.good();
}

bool fncAddReferenceTables(const Ref<dao::Database> &objDatabase) {
    Ref<dao::TableDef> objTableDef;
    Steps steps;
    const auto table = [&](const char *strTable, const char *strIDField, const QString &strCaption) {
        steps.run([&] { objTableDef = fncDAOAddTable(objDatabase, strTable, strIDField, strCaption); });
    };
    const auto add = [&](const char *strName, qint16 intType, const QString &strCaption) {
        steps.run([&] { subDAOAddField(objTableDef, strName, strCaption, intType, intTextSize); });
    };
    table("tblCallerCategories", "intCallerCategoryID", LNGCALLERCATEGORY + " ID");
    add("strCallerCategory", dao::dbText, LNGCALLERCATEGORY);
    table("tblStatuses", "intStatusID", LNGSTATUS + " ID");
    add("strStatus", dao::dbText, LNGSTATUS);
    table("tblCallers", "intCallerID", LNGCALLER + " ID");
    add("strFullName", dao::dbText, LNGCALLER);
    add("strTelephone", dao::dbText, LNGPHONE);
    add("strEmail", dao::dbText, LNGEMAIL);
    add("strComment", dao::dbText, LNGCOMMENT);
    add("strCategory", dao::dbText, LNGCALLERCATEGORY);
    subAddOtherSettingsTable(objDatabase);
    table("tblWork", "intWorkItemID", LNGWORK + " ID");
    add("strPersonName", dao::dbText, LNGNAME);
    add("intMinutesWorked", dao::dbInteger, LNGMINUTES);
    add("dteWorkedDate", dao::dbDate, LNGDATE);
    add("strWorkDescription", dao::dbText, LNGDESCRIPTION);
    // As wide as the tickets' own numbers: a narrower column would refuse the work of every ticket past 32767.
    add("intTicketID", dao::dbLong, LNGTICKETID);
    subDAORemoveForeignKeys(objDatabase, "tblTickets");
    return steps.good();
}

void subAddOtherSettingsTable(const Ref<dao::Database> &objDatabase) try {
    subTrace("Adding tblOtherSettings to database");
    const Ref<dao::TableDef> objTableDef =
        fncDAOAddTable(objDatabase, "tblOtherSettings", "intSettingID", LNGSETTINGS + " ID");
    Columns(objTableDef).add("strPropName", dao::dbText, LNGNAME).add("strPropValue", dao::dbMemo, "Value");
} catch (const Failure &failure) {
    subErrorHandler(failure, "subAddOtherSettingsTable");
}

void subDAORemoveForeignKeys(const Ref<dao::Database> &objDatabase, const QString &strTable) try {
    subTrace("Removing relations from  " + strTable);
    const QList<dao::Relation> relations = objDatabase->Relations();
    for (auto relation = relations.rbegin(); relation != relations.rend(); ++relation)
        if (relation->ForeignTable == strTable)
            objDatabase->DeleteRelation(relation->Name);
} catch (const Failure &failure) {
    subErrorHandler(failure, "subDAORemoveForeignKeys");
}

Ref<dao::TableDef> fncDAOAddTable(const Ref<dao::Database> &objDatabase, const QString &strTableName,
                                  const QString &strIDField, const QString &strCaption) {
    const Ref<dao::TableDef> objTable = objDatabase->CreateTableDef(strTableName);
    const Ref<dao::Field> objField = objTable->CreateField(strIDField, dao::dbLong);
    objField->Attributes = dao::dbAutoIncrField;
    objTable->AppendField(objField);
    objDatabase->AppendTableDef(objTable);
    if (!strCaption.isEmpty())
        objField->AppendProperty(objField->CreateProperty("Caption", dao::dbMemo, strCaption));
    const Ref<dao::Index> objIndex = objTable->CreateIndex("PrimaryKey");
    objIndex->Primary = true;
    objIndex->AppendField(objIndex->CreateField(strIDField));
    objTable->AppendIndex(objIndex);
    return objTable;
}

void subDAOAddField(const Ref<dao::TableDef> &objTableDef, const QString &strName, const QString &strCaption,
                    qint16 intType, qint16 intSize) {
    const bool isText = intType == dao::dbText;
    const Ref<dao::Field> objField = objTableDef->CreateField(strName, intType, isText ? intSize : qint16{0});
    objField->AllowZeroLength = isText;
    objTableDef->AppendField(objField);
    if (!strCaption.isEmpty())
        objField->AppendProperty(objField->CreateProperty("Caption", dao::dbMemo, strCaption));
}

void subCreateFilledDB(const QString &strPath, const std::function<void(const Ref<ado::Connection> &)> &subFill) {
    const QString strFile = scripting::nativePath(strPath);
    const QString strUnnamed = strPath + "." + QUuid::createUuid().toString(QUuid::Id128) + ".first";
    const auto finish = qScopeGuard([&] { ado::removeJetFile(strUnnamed); });
    if (!fncCreateAccessDB(strUnnamed))
        throw Failure(failures::unspecified, QString("The database could not be created in %1. Check the rights to the "
                                                     "folder and the room on its disk.")
                                                 .arg(QFileInfo(strFile).path()));
    {
        const auto connection = Ref<ado::Connection>::make();
        connection->SetConnectionString(fncFileConnection(strUnnamed));
        connection->Open();
        subFill(connection);
    }
    const auto failure = Attempt([&] { ado::moveJetFile(strUnnamed, strPath); });
    if (failure && !QFile::exists(strFile))
        throw Failure(*failure);
}

QString fncCreateSQLDB(const QString &strDefaultDBName) {
    window::msgBox(
        QString("The database %1 can't be created: database servers are not supported yet. Please start again "
                "and choose a new database file.")
            .arg(strDefaultDBName),
        window::Buttons::OK, window::Icon::Critical, strProgramTitle);
    return {};
}
