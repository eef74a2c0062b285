#include "platform/safeobjects/wrappers.h"

#include "platform/safeobjects/safeobjects.h"
#include "platform/value/convert.h"

namespace safeobjects {

namespace {
automation::Object &checked(const automation::ObjectPtr &object) {
    if (!object)
        throw Failure(failures::objectNotSet);
    return *object;
}

automation::ObjectPtr sessionOf(const SessionSource &source) { return source ? source() : nullptr; }
} // namespace

automation::Object &SafeItem::wrapped() const { return checked(m_item); }

QString SafeItem::body() const { return toText(wrapped().get("Body")); }

QString SafeItem::htmlBody() const { return toText(wrapped().get("HTMLBody")); }

QString SafeItem::subject() const { return toText(wrapped().get("Subject")); }

QString SafeItem::email1Address() const { return toText(wrapped().get("Email1Address")); }

void SafeItem::SaveAs(const QString &Path, int Type) { wrapped().call("SaveAs", {Path, Type}); }

void SafeItem::Send() { wrapped().call("Send", {}); }

Value MAPIUtils::GetItemFromID(const QString &EntryID, const Value &StoreID) {
    return checked(sessionOf(m_session)).call("GetItemFromID", {EntryID, StoreID});
}

void MAPIUtils::DeliverNow() { checked(sessionOf(m_session)).call("DeliverNow", {}); }

int AddressLists::count() { return toInt32(checked(sessionOf(m_session)).ask({{"AddressLists", {}}, {"Count", {}}})); }

Value AddressLists::Item(int Index) {
    return checked(sessionOf(m_session)).ask({{"AddressLists", {}}, {"Item", {Index}}});
}

int ButtonHolder::version() const { return fileVersion; }

} // namespace safeobjects
