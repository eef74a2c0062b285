/// The watch on the mail folders that the settings name: a scan of each when the program starts, and then every new
/// item as it comes.
///
/// Several clients may have the same folders. Between them stand two marks that all can see: a message is claimed by
/// the saved text "Working..." in `BillingInformation`, which only one client's save can win; and a folder with the
/// flag item in it is watched by somebody.
#pragma once

#include "orvelle/host/folders.h"
#include "platform/scripting/dictionary.h"
#include "platform/value/processlocal.h"
#include "platform/value/ref.h"

#include <QString>

/// The subject of the flag item.
inline constexpr char strFlagSubject[] = "Folder is being monitored by Orvelle for Outlook";

/// Watches one folder. Its end takes the flag item away, which frees the folder for the next client that starts.
class cIncomingMonitor : public std::enable_shared_from_this<cIncomingMonitor> {
  public:
    cIncomingMonitor() = default;
    ~cIncomingMonitor();
    cIncomingMonitor(const cIncomingMonitor &) = delete;
    cIncomingMonitor &operator=(const cIncomingMonitor &) = delete;

    host::PostItem ouiFlagItem;
    /// Set by `Watch`.
    host::Items ouiItems;

    /// Takes the folder's items and listens to them.
    void Watch(const host::Items &ois);
    /// Handles one new item.
    void ouiItems_ItemAdd(const host::Item &Item);
    /// Posts the flag item into the folder, with the user's name as its text.
    void AddFlagItem();

  private:
    /// The parent of the items, which stays the same.
    host::MAPIFolder m_ouf;
    automation::SubscriptionPtr m_itemAdd;
};

/// The monitors of this process, by folder path.
extern ProcessLocal<Ref<scripting::Dictionary<Ref<cIncomingMonitor>>>> colIncomingMonitors;

/// Scans every configured folder and takes charge of those that it leaves empty.
void subMonitorMailFolders();

/// Whether the scan is to convert the item: a mail or post that is no flag and that nobody has claimed. False for one
/// that can't be read.
bool fncIsNewMailItem(const host::Item &oui);
