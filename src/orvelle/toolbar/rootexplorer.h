/// `cRootExplorer`: the monitor run's link to the one Explorer that it started on. It puts the toolbar there, answers
/// its buttons, ends the process when the Explorer leaves the folder, closes, or the host quits, and files sent mail
/// under the ticket that it belongs to.
#pragma once

#include "orvelle/host/host.h"
#include "platform/value/processlocal.h"
#include "platform/value/ref.h"

#include <memory>
#include <vector>

class cRootExplorer : public std::enable_shared_from_this<cRootExplorer> {
  public:
    cRootExplorer() = default;
    ~cRootExplorer();
    cRootExplorer(const cRootExplorer &) = delete;
    cRootExplorer &operator=(const cRootExplorer &) = delete;

    /// "ORVLSentItems" below the user's sent items; Nothing until `subSetupSentORVL`.
    host::MAPIFolder oufORVLSentItems;
    host::Explorer oueCurrExplorer;
    host::Application ouaMonitorApp;
    host::Items oisORVLSentItems;
    host::CommandBarButton cmdSettings;
    host::CommandBarButton cmdCopy;

    /// Takes the host and the Explorer and listens to both.
    void Attach(const host::Application &oua, const host::Explorer &oue);

    void cmdCopy_Click();
    void cmdSettings_Click();
    void oisORVLSentItems_ItemAdd(const host::Item &Item);
    /// Files what lies among the sent mails: before an end, since the last came with the last piece of work.
    void subFileSentMail();
    void ouaMonitorApp_Quit();
    void oueCurrExplorer_Close();
    void oueCurrExplorer_FolderSwitch();

    /// Removes the bar and every bar of its name, which takes away one that an earlier process left behind.
    void subRemoveButtons();
    /// Makes the bar; nothing without an Explorer that has bars.
    void subAddButtons();
    /// Starts the watch of sent mail.
    void subSetupSentORVL();
    /// The folder of sent mail, which is set up where it isn't yet; Nothing where it can't be had.
    host::MAPIFolder fncSentFolder();
    /// Tears the bar down and lets go of everything.
    void Class_Terminate();

  private:
    /// What an event does, while the object is there.
    std::function<void(const ValueList &)> Own(void (cRootExplorer::*subEvent)());
    host::CommandBarButton AddButton(const QString &strCaption, const QString &strTooltip, qint32 intFaceId);

    host::CommandBar cbrToolbar;
    std::vector<automation::SubscriptionPtr> m_hostEvents;
    std::vector<automation::SubscriptionPtr> m_buttonEvents;
    automation::SubscriptionPtr m_sentItemAdd;
};

/// Nothing outside of a run that is attached to an Explorer.
extern ProcessLocal<Ref<cRootExplorer>> objRootExplorer;

/// Makes it, and lets what is sent go to its folder.
void subMakeRootExplorer();
