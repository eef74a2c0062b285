/// The handles of the host's windows and of the bars in them.
#pragma once

#include "orvelle/host/folders.h"

namespace host {

class CommandBarButton : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] QString Caption() const { return text("Caption"); }
    void Caption(const QString &value) const { put("Caption", value); }
    [[nodiscard]] QString TooltipText() const { return text("TooltipText"); }
    void TooltipText(const QString &value) const { put("TooltipText", value); }
    [[nodiscard]] qint32 FaceId() const { return number("FaceId"); }
    void FaceId(qint32 value) const { put("FaceId", value); }
    [[nodiscard]] qint32 Width() const { return number("Width"); }
    void Width(qint32 value) const { put("Width", value); }
    /// 1 shows the icon only.
    [[nodiscard]] qint32 Style() const { return number("Style"); }
    void Style(qint32 value) const { put("Style", value); }
    [[nodiscard]] bool BeginGroup() const { return flag("BeginGroup"); }
    void BeginGroup(bool value) const { put("BeginGroup", value); }
    void Delete() const { call("Delete"); }
};

class CommandBarControls : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    [[nodiscard]] CommandBarButton Item(const Value &index) const { return call("Item", {index}); }
    [[nodiscard]] CommandBarButton Add(qint32 type, qint32 id, bool temporary) const {
        return call("Add", {type, id, Value::Missing{}, Value::Missing{}, temporary});
    }
};

class CommandBar : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] QString Name() const { return text("Name"); }
    [[nodiscard]] bool Visible() const { return flag("Visible"); }
    void Visible(bool value) const { put("Visible", value); }
    [[nodiscard]] CommandBarControls Controls() const { return get("Controls"); }
    void Delete() const { call("Delete"); }
};

class CommandBars : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    [[nodiscard]] CommandBar Item(const Value &index) const { return call("Item", {index}); }
    [[nodiscard]] CommandBar Add(const QString &name, qint32 position, bool menuBar, bool temporary) const {
        return call("Add", {name, position, menuBar, temporary});
    }
};

class Selection : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    [[nodiscard]] host::Item Item(qint32 index) const { return call("Item", {index}); }
};

class Explorer : public Handle {
  public:
    using Handle::Handle;
    Explorer(const Handle &handle) : Handle(handle) {}
    [[nodiscard]] MAPIFolder CurrentFolder() const { return get("CurrentFolder"); }
    void CurrentFolder(const MAPIFolder &folder) const { put("CurrentFolder", folder); }
    [[nodiscard]] host::Selection Selection() const { return get("Selection"); }
    [[nodiscard]] host::CommandBars CommandBars() const { return get("CommandBars"); }
    [[nodiscard]] QString Caption() const { return text("Caption"); }
    /// 0 maximised, 1 minimised, 2 normal.
    void WindowState(qint32 value) const { put("WindowState", value); }
    void Display() const { call("Display"); }
    void Activate() const { call("Activate"); }
    void Close() const { call("Close"); }
};

class Explorers : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    [[nodiscard]] Explorer Item(qint32 index) const { return call("Item", {index}); }
    [[nodiscard]] Explorer Add(const MAPIFolder &folder, qint32 displayMode) const {
        return call("Add", {folder, displayMode});
    }
};

class Inspector : public Handle {
  public:
    using Handle::Handle;
    Inspector(const Handle &handle) : Handle(handle) {}
    [[nodiscard]] host::Item CurrentItem() const { return get("CurrentItem"); }
    [[nodiscard]] host::CommandBars CommandBars() const { return get("CommandBars"); }
    [[nodiscard]] QString Caption() const { return text("Caption"); }
    void Display() const { call("Display"); }
    void Activate() const { call("Activate"); }
    /// 0 saves, 1 discards, 2 asks.
    void Close(qint32 saveMode) const { call("Close", {saveMode}); }
};

class Inspectors : public Handle {
  public:
    using Handle::Handle;
    [[nodiscard]] qint32 Count() const { return number("Count"); }
    [[nodiscard]] Inspector Item(qint32 index) const { return call("Item", {index}); }
};

inline Inspector Item::GetInspector() const { return get("GetInspector"); }

} // namespace host
