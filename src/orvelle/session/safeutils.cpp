#include "orvelle/session/safeutils.h"

#include "orvelle/core/process.h"
#include "orvelle/session/clienttools.h"
#include "platform/scripting/components.h"

namespace {
/// Names this program to the library.
constexpr auto authKey = "ORVELLE-9-FOR-OUTLOOK";

ProcessLocal<host::Handle> safeUtils;
/// True once the library could not be had: it is not asked for again.
ProcessLocal<bool> blnSafeUtilsMissing;

SafeItem fncNewSafeItem(const QString &strProgID) { return SafeItem(scripting::CreateObject(strProgID)); }
} // namespace

void SafeItem::AuthKey() const { put("AuthKey", authKey); }

bool fncSetupSafeUtils() {
    if (blnSafeUtilsMissing)
        return false;
    if (safeUtils.get())
        return true;
    const auto failure = Attempt([] {
        const host::Handle utils(scripting::CreateObject("SafeTessmark.MAPIUtils"));
        utils.put("AuthKey", authKey);
        safeUtils = utils;
    });
    if (!failure)
        return true;
    // First, since events come in while the question is open.
    blnSafeUtilsMissing = true;
    Attempt([] { subOfferClientTools(); });
    return false;
}

void subCleanupSafeUtils() {
    if (safeUtils->isNothing())
        return;
    Attempt([] { safeUtils->call("Cleanup"); });
    safeUtils = host::Handle();
}

void subDeliverNow() { safeUtils->call("DeliverNow"); }

SafeItem fncSafeMailItem(const host::Item &oui) {
    SafeItem safe = fncNewSafeItem("SafeTessmark.SafeMailItem");
    safe.Item(oui);
    return safe;
}

SafeItem fncSafePostItem(const host::Item &oui) {
    SafeItem safe = fncNewSafeItem("SafeTessmark.SafePostItem");
    safe.AuthKey();
    safe.Item(oui);
    return safe;
}

SafeItem fncSafeContactItem(const host::Item &oui) {
    SafeItem safe = fncNewSafeItem("SafeTessmark.SafeContactItem");
    safe.AuthKey();
    safe.Item(oui);
    return safe;
}

QString fncGetSenderName(const host::Item &ouiMail) {
    if (!fncSetupSafeUtils())
        return {};
    return AttemptOr([&] { return fncSafeMailItem(ouiMail).Sender().Name(); }, QString());
}
