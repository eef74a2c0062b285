/// The rights to the files of a profile and of the public folders.
#pragma once

#include <QString>

namespace desk {

/// Keeps a profile's folder, and the desk's own files in it, to their owner. Says on standard error what had to be
/// narrowed, and what belongs to somebody else and was left. Files that are none of the desk's are left as they are.
void narrowProfile(const QString &folder);

/// Takes everybody's rights to the file of the public folders away; those of its group stay as they are.
void narrowPublicStore(const QString &file);

/// Gives the engine's files beside a store the group and the rights of the store. REQUIRES: the store is open.
void followStore(const QString &file);

} // namespace desk
