// The text, the subject and the caller of a ticket that is made from a mail.

#include "orvelle/core/process.h"
#include "orvelle/core/texthelpers.h"
#include "orvelle/mail/createticket.h"
#include "orvelle/reference/settings.h"
#include "orvelle/session/properties.h"
#include "orvelle/session/safeutils.h"
#include "orvelle/session/session.h"
#include "platform/value/convert.h"

namespace {
/// The first version whose items have a body format.
constexpr qint16 firstWithBodyFormat = 10;
constexpr qint32 formatHTML = 2;
constexpr qint32 formatRichText = 3;

/// The fields of an address entry of the mail system itself.
constexpr qint32 smtpAddress = 0x39FE001E;
constexpr qint32 businessTelephone = 0x3A08001E;
constexpr qint32 department = 0x3A18001E;

void subFillFromContact(const host::UserProperties &oups, const host::ContactItem &contact) {
    Attempt([&] { oups.trySet("Caller name", contact.FullName()); });
    Attempt([&] { oups.trySet("Caller phone", contact.BusinessTelephoneNumber()); });
    Attempt([&] { oups.trySet("Caller category", contact.CompanyName()); });
}

void subFillCaller(const host::UserProperties &oups, const host::AddressEntry &sender) {
    Attempt([&] { oups.trySet("Caller name", sender.Name()); });
    QString strAddress = AttemptOr([&] { return sender.Address(); }, QString());
    const bool blnOfSystem =
        !strAddress.contains(QChar(u'@')) || AttemptOr([&] { return sender.Type() == "EX"; }, false);
    if (blnOfSystem) {
        Attempt([&] { strAddress = toText(sender.Fields(smtpAddress)); });
        Attempt([&] { oups.trySet("Caller phone", toText(sender.Fields(businessTelephone))); });
        Attempt([&] { oups.trySet("Caller category", toText(sender.Fields(department))); });
    } else {
        Attempt([&] {
            const host::ContactItem contact = fncFindContact(sender, strAddress);
            if (contact)
                subFillFromContact(oups, contact);
        });
    }
    oups.trySet("Caller email", strAddress);
}

/// The mail's text for the ticket's page.
QString fncTextOf(const SafeItem &safe) {
    const auto plain = [&] { return AttemptOr([&] { return safe.Body(); }, QString()); };
    const QString strHTML = AttemptOr([&] { return safe.HTMLBody(); }, QString());
    if (strHTML.isEmpty())
        return plain();
    const QString strInner = fncGetBody(strHTML);
    return strInner.isEmpty() ? plain().replace(strLineEnd, "<br>") : strInner;
}

QString fncPage() {
    const QString strPage = toText(objSettings->OtherSettings->GetValue("NewHTML", propertytype::text)).trimmed();
    return strPage.isEmpty() ? fncNewTicketHTML() : strPage;
}

/// The host keeps the look of a plain body until the format has gone to rich text and back, and that costs the text: so
/// it is set twice.
void subSetBody(const host::PostItem &ouiPost, const QString &strHTML) {
    const bool blnHasFormat = fncOutlookVersion() >= firstWithBodyFormat;
    if (blnHasFormat)
        ouiPost.tryPut("BodyFormat", formatHTML);
    ouiPost.tryPut("HTMLBody", strHTML);
    if (!blnHasFormat)
        return;
    ouiPost.tryPut("BodyFormat", formatRichText);
    ouiPost.tryPut("BodyFormat", formatHTML);
    ouiPost.tryPut("HTMLBody", strHTML);
}
} // namespace

void subFillTicketFromMail(const host::Item &ouiMail, const host::PostItem &ouiPost, const host::UserProperties &oups) {
    if (!fncSetupSafeUtils())
        return;
    const SafeItem safe = AttemptOr([&] { return fncSafeMailItem(ouiMail); }, SafeItem());
    subFillCaller(oups, AttemptOr([&] { return safe.Sender(); }, host::AddressEntry()));

    ouiMail.readAhead({"HTMLBody", "Subject", "Importance"});
    const QString strText = fncTextOf(safe);
    const QString strSubject = AttemptOr([&] { return ouiMail.Subject(); }, QString());
    Attempt([&] { ouiPost.tryPut("Importance", ouiMail.Importance()); });
    if (!strText.isEmpty())
        subSetBody(ouiPost, fncPage().replace("[BODY]", strText));
    if (!strSubject.isEmpty())
        ouiPost.tryPut("Subject", strSubject);
    subSetOutlookValue(oups, "Date due", Clock::now(), propertytype::date);
}
