/// The host as the system sees it: thin typed handles over the automation protocol, one class per family of the host's
/// interface, each with the host's own member names. A getter is `oui.Subject()`, a setter `oui.Subject(text)`.
///
/// System code reaches the host through these alone. An empty handle is Nothing, and any member of it fails with 91.
#pragma once

#include "orvelle/host/formcontrol.h"
#include "orvelle/host/windows.h"

namespace host {

class Application : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] NameSpace GetNamespace(const QString &type) const { return call("GetNamespace", {type}); }
    /// Starts with the major number and a point.
    [[nodiscard]] QString Version() const { return text("Version"); }
    /// Nothing when no window shows a folder.
    [[nodiscard]] Explorer ActiveExplorer() const { return call("ActiveExplorer"); }
    [[nodiscard]] Inspector ActiveInspector() const { return call("ActiveInspector"); }
    /// An Explorer, an Inspector, or Nothing; `typeName` tells which.
    [[nodiscard]] Handle ActiveWindow() const { return call("ActiveWindow"); }
    [[nodiscard]] host::Explorers Explorers() const { return get("Explorers"); }
    [[nodiscard]] host::Inspectors Inspectors() const { return get("Inspectors"); }
    /// A new unsaved item; 0 is a mail.
    [[nodiscard]] Item CreateItem(qint32 type) const { return call("CreateItem", {type}); }
};

} // namespace host
