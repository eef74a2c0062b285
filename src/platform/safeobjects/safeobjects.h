/// The safe-object library and the add-in that brings it: guarded counterparts of the host's items and address entries.
///
/// The library lives in the program's own process and works on the objects that it is given, or on the session that the
/// program has with the host. Whether it is installed is the component registry's word.
#pragma once

#include "automation/object.h"

#include <QStringList>

#include <functional>

namespace safeobjects {

/// The names of the components.
inline constexpr char mapiUtils[] = "SafeTessmark.MAPIUtils";
inline constexpr char safeMailItem[] = "SafeTessmark.SafeMailItem";
inline constexpr char safePostItem[] = "SafeTessmark.SafePostItem";
inline constexpr char safeContactItem[] = "SafeTessmark.SafeContactItem";
inline constexpr char addressLists[] = "SafeTessmark.AddressLists";
inline constexpr char buttonHolder[] = "OrvelleClientTools.cButtonHolder";

/// The version of the client tools that this library is.
constexpr qint32 fileVersion = 92200;

/// All component names.
QStringList progIds();

/// Makes the components known to the current program copy.
/// \param session  gives the host's session (`NameSpace`); may fail or give Nothing while there is none.
void registerComponents(const std::function<automation::ObjectPtr()> &session);

} // namespace safeobjects
