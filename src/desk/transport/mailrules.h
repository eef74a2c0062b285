/// What a profile's person has decided about automatic mail; kept in its "desk.ini".
#pragma once

#include "desk/content/profile.h"

#include <QStringList>

namespace desk {

struct MailRules {
    /// How many mails programs may send to one address within an hour; 0 for any number.
    int mostAnHour = 10;
    /// Whether automatic mail goes into folders of its own instead of the Inbox.
    bool sortsAutomatic = false;
    /// Addresses that lead here beside the profile's own, such as that of a helpdesk.
    QStringList ownAddresses = {};

    friend bool operator==(const MailRules &, const MailRules &) = default;
};

/// The rules that hold. A value that nobody can read is taken as not given.
MailRules mailRules(const Profile &profile);
/// Running desks follow at once. Fails with 70 where the file can't be written.
void saveMailRules(const Profile &profile, const MailRules &rules);

} // namespace desk
