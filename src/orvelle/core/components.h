/// The component objects that the rest of the system leans on: files, dictionaries, the shell.
#pragma once

#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/shell.h"
#include "platform/value/processlocal.h"
#include "platform/value/ref.h"

/// One for the process, made by `subSetupFS`.
extern ProcessLocal<Ref<scripting::FileSystemObject>> fsoFileSystem;

/// Makes `fsoFileSystem` where it isn't yet.
void subSetupFS();

/// Checks that the dictionary component is there; a missing one is reported.
void subSetupDic();
/// A new empty dictionary.
template <class T>
Ref<scripting::Dictionary<T>> fncCreateDic() {
    subSetupDic();
    return Ref<scripting::Dictionary<T>>::make();
}

/// A new shell object. A machine without one gets a message, and the process ends.
Ref<scripting::Shell> fncGetShell();
