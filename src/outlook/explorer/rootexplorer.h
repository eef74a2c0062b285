/// `cRootExplorer`: the monitor run's link to the one Explorer that it started on. It puts the toolbar there, answers
/// its buttons, ends the process when the Explorer leaves the folder, closes, or the host quits, and files sent mail
/// under the ticket that it belongs to.
#pragma once

#include "outlook/host/host.h"
#include "platform/value/processlocal.h"
#include "platform/value/ref.h"

#include <vector>

class cRootExplorer {
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
    void ouaMonitorApp_Quit();
    void oueCurrExplorer_Close();
    void oueCurrExplorer_FolderSwitch();

    /// Removes the bar and every bar of its name, which takes away one that an earlier process left behind.
    void subRemoveButtons();
    /// Makes the bar; nothing without an Explorer that has bars.
    void subAddButtons();
    /// Starts the watch of sent mail.
    void subSetupSentORVL();
    /// Tears the bar down and lets go of everything.
    void Class_Terminate();

  private:
    host::CommandBarButton AddButton(const QString &strCaption, const QString &strTooltip, qint32 intFaceId);

    host::CommandBar cbrToolbar;
    std::vector<automation::SubscriptionPtr> m_hostEvents;
    std::vector<automation::SubscriptionPtr> m_buttonEvents;
    automation::SubscriptionPtr m_sentItemAdd;
};

/// Nothing outside of a run that is attached to an Explorer.
extern ProcessLocal<Ref<cRootExplorer>> objRootExplorer;
