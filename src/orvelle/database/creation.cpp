#include "orvelle/database/creation.h"

#include "orvelle/core/errorhandler.h"
#include "orvelle/core/phrases.h"
#include "orvelle/core/process.h"
#include "orvelle/core/trace.h"
#include "platform/value/processlocal.h"
#include "platform/window/window.h"

namespace {

constexpr qint16 intTextSize = 255;
constexpr qint32 dbVersion = dao::dbVersion40;

/// What lives for one creation.
struct Creation {
    QString strPath;
    Ref<dao::DBEngine> objEngine;
    Ref<dao::Database> objDatabase;
    Ref<dao::TableDef> objTableDef;
};
ProcessLocal<Creation> creation;

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

void addPersons(const Ref<dao::Database> &objDatabase) {
    creation.get().objTableDef = fncDAOAddTable(objDatabase, "tblPersons", "intPersonID", LNGRESPONSIBLE + " ID");
    Columns(creation.get().objTableDef)
        .add("strPersonName", dao::dbText, LNGNAME)
        .add("curRate", dao::dbCurrency, LNGRATE)
        .add("strEmail", dao::dbText, LNGEMAIL);
}

void addTickets(const Ref<dao::Database> &objDatabase) {
    creation.get().objTableDef = fncDAOAddTable(objDatabase, "tblTickets", "intTicketID", LNGTICKETID);
    Columns(creation.get().objTableDef)
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

void addTypes(const Ref<dao::Database> &objDatabase) {
    creation.get().objTableDef = fncDAOAddTable(objDatabase, "tblTypes", "intTicketType", LNGPROBLEMTYPE + " ID");
    Columns(creation.get().objTableDef)
        .add("strTypeDescription", dao::dbText, LNGPROBLEMTYPE)
        .add("strCategory", dao::dbText, LNGPROBLEMCATEGORY)
        .add("intDefMin", dao::dbInteger, LNGMINUTES);
}

} // namespace

bool fncCreateAccessDB(const QString &strPath) {
    struct Release {
        ~Release() { creation = Creation(); }
    } const release;
    creation.get().strPath = strPath;
    if (!fncCreateV7DB() || !fncAddTicketColumns() || !fncAddReferenceTables())
        return false;
    creation.get().objDatabase->Close();
    return true;
}

bool fncCreateV7DB() try {
    subTrace("Creating a new DAO.DBEngine");
    Creation &current = creation.get();
    current.objEngine = Ref<dao::DBEngine>::make();
    subTrace("Creating version ORVL V7 database at " + current.strPath);
    current.objDatabase =
        current.objEngine->CreateDatabase(current.strPath, ";LANGID=0x0409;CP=1252;COUNTRY=0", dbVersion);
    addPersons(current.objDatabase);
    addTickets(current.objDatabase);
    addTypes(current.objDatabase);
    return true;
} catch (const Failure &failure) {
    subErrorHandler(failure, "fncCreateV7DB");
}

bool fncAddTicketColumns() {
    Ref<dao::TableDef> &objTableDef = creation.get().objTableDef;
    Steps steps;
    steps.run([&] { objTableDef = creation.get().objDatabase->FindTableDef("tblTickets"); });
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

bool fncAddReferenceTables() {
    const Ref<dao::Database> &objDatabase = creation.get().objDatabase;
    Ref<dao::TableDef> &objTableDef = creation.get().objTableDef;
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

QString fncCreateSQLDB(const QString &strDefaultDBName) {
    window::msgBox(
        QString("The database %1 can't be created: database servers are not supported yet. Please start again "
                "and choose a new database file.")
            .arg(strDefaultDBName),
        window::Buttons::OK, window::Icon::Critical, strProgramTitle);
    return {};
}
