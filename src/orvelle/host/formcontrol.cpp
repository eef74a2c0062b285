#include "orvelle/host/formcontrol.h"

namespace host {

QString FormControl::Text() const { return text("Text"); }
void FormControl::SetText(const QString &text) { put("Text", text); }
::Value FormControl::Value() const { return get("Value"); }
void FormControl::SetValue(const ::Value &value) { put("Value", value); }
void FormControl::Clear() { call("Clear"); }
void FormControl::AddItem(const QString &text) { call("AddItem", {text}); }

void FormControl::SetItems(const QStringList &texts) { put("List", ::Value(ValueList(texts.begin(), texts.end()))); }

int FormControl::ListCount() const { return number("ListCount"); }
::Value FormControl::List(int row, int column) const { return call("List", {row, column}); }
void FormControl::SetList(int row, int column, const ::Value &value) { call("SetList", {row, column, value}); }
int FormControl::ListIndex() const { return number("ListIndex"); }
void FormControl::SetListIndex(int row) { put("ListIndex", row); }
QRect FormControl::place() const { return {number("Left"), number("Top"), number("Width"), number("Height")}; }
qint32 FormControl::BackColor() const { return number("BackColor"); }
void FormControl::SetBackColor(qint32 color) { put("BackColor", color); }

} // namespace host
