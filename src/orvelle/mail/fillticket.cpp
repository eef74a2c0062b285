// The text, the subject and the caller of a ticket that is made from a mail.

#include "orvelle/core/process.h"
#include "orvelle/core/texthelpers.h"
#include "orvelle/host/constants.h"
#include "orvelle/host/snapshot.h"
#include "orvelle/mail/createticket.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/session/session.h"
#include "platform/value/convert.h"

namespace {

/// The fields of an address entry of the mail system itself.
constexpr qint32 smtpAddress = 0x39FE001E;
constexpr qint32 businessTelephone = 0x3A08001E;
constexpr qint32 department = 0x3A18001E;

void subFillFromContact(const host::PostItem &ouiPost, const host::ContactItem &contact) {
    const host::ContactItem seen = host::snapshot(contact, {"FullName", "BusinessTelephoneNumber", "CompanyName"});
    Attempt([&] { ouiPost.TryPropertyValue("Caller name", seen.FullName()); });
    Attempt([&] { ouiPost.TryPropertyValue("Caller phone", seen.BusinessTelephoneNumber()); });
    Attempt([&] { ouiPost.TryPropertyValue("Caller category", seen.CompanyName()); });
}

void subFillCaller(const host::PostItem &ouiPost, const host::AddressEntry &sender) {
    Attempt([&] { ouiPost.TryPropertyValue("Caller name", sender.Name()); });
    QString strAddress = AttemptOr([&] { return sender.Address(); }, QString());
    const bool blnOfSystem =
        !strAddress.contains(QChar(u'@')) || AttemptOr([&] { return sender.Type() == "EX"; }, false);
    if (blnOfSystem) {
        Attempt([&] { strAddress = toText(sender.Fields(smtpAddress)); });
        Attempt([&] { ouiPost.TryPropertyValue("Caller phone", toText(sender.Fields(businessTelephone))); });
        Attempt([&] { ouiPost.TryPropertyValue("Caller category", toText(sender.Fields(department))); });
    } else {
        Attempt([&] {
            const host::ContactItem contact = fncFindContact(sender, strAddress);
            if (contact)
                subFillFromContact(ouiPost, contact);
        });
    }
    ouiPost.TryPropertyValue("Caller email", strAddress);
}

/// The mail's text for the ticket's page.
/// \param seen  the mail with its HTML body in it.
QString fncTextOf(const host::Item &ouiMail, const SafeItem &seen) {
    // Most mails have an HTML body, and the plain one need not cross.
    const auto plain = [&] { return AttemptOr([&] { return fncSafeMailItem(ouiMail).Body(); }, QString()); };
    const QString strHTML = AttemptOr([&] { return seen.HTMLBody(); }, QString());
    if (strHTML.isEmpty())
        return plain();
    const QString strInner = fncGetBody(strHTML);
    return strInner.isEmpty() ? plain().replace(strLineEnd, "<br>") : strInner;
}

QString fncPage() {
    const QString strPage = toText(objSettings->OtherSettings->GetValue("NewHTML", valuetype::text)).trimmed();
    return strPage.isEmpty() ? fncNewTicketHTML() : strPage;
}

/// The host keeps the look of a plain body until the format has gone to rich text and back; see `fncHasBodyFormat`.
void subSetBody(const host::PostItem &ouiPost, const QString &strHTML) {
    const bool blnHasFormat = fncHasBodyFormat();
    if (blnHasFormat)
        ouiPost.TryBodyFormat(host::bodyformat::html);
    ouiPost.TryHTMLBody(strHTML);
    if (!blnHasFormat)
        return;
    ouiPost.TryBodyFormat(host::bodyformat::richText);
    ouiPost.TryBodyFormat(host::bodyformat::html);
    ouiPost.TryHTMLBody(strHTML);
}
} // namespace

void subFillTicketFromMail(const host::Item &ouiMail, const host::PostItem &ouiPost) {
    if (!fncSetupSafeUtils())
        return;
    const host::Item seen = host::snapshot(ouiMail, {"Sender", "HTMLBody", "Subject", "Importance"});
    const SafeItem safe = AttemptOr([&] { return fncSafeMailItem(seen); }, SafeItem());
    subFillCaller(ouiPost, AttemptOr([&] { return safe.Sender(); }, host::AddressEntry()));

    const QString strText = fncTextOf(ouiMail, safe);
    const QString strSubject = AttemptOr([&] { return seen.Subject(); }, QString());
    Attempt([&] { ouiPost.TryImportance(seen.Importance()); });
    if (!strText.isEmpty())
        subSetBody(ouiPost, fncPage().replace("[BODY]", strText));
    if (!strSubject.isEmpty())
        ouiPost.TrySubject(strSubject);
    subSetOutlookValue(ouiPost, "Date due", Clock::now(), valuetype::date);
}
