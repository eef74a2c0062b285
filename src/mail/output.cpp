#include "mail/output.h"

#include "mail/intake.h"
#include "outlook/explorer/rootexplorer.h"
#include "outlook/properties.h"
#include "reference/settings.h"

void subSetEmailFrom(const host::MailItem &ouiMail) {
    constexpr qsizetype shortestName = 6;
    const QString strFrom = toText(objSettings->OtherSettings->GetValue("EmailFrom", propertytype::text));
    if (strFrom.size() < shortestName)
        return;
    ouiMail.SentOnBehalfOfName(strFrom);
    ouiMail.ReplyRecipientNames(strFrom);
}

void subSetSentFolder(const host::MailItem &ouiMail) {
    if (!fncUsesSubFolders())
        return;
    if (objRootExplorer->oufORVLSentItems.isNothing())
        objRootExplorer->subSetupSentORVL();
    if (objRootExplorer->oufORVLSentItems)
        ouiMail.SaveSentMessageFolder(objRootExplorer->oufORVLSentItems);
}
