/// The attachments of a message, carried over to a ticket through temporary files.
#pragma once

#include "orvelle/host/items.h"

#include <QStringList>

/// Copies files and embedded messages one by one. The whole message is attached as "OriginalMessage.msg" when it holds
/// an OLE object or an embedded message that can't be carried, or when it is large without having any attachment
/// (pictures in its body).
///
/// Gives the names of the files that could not be copied, since the folder for temporary files is full or takes
/// nothing. They are still with the source.
QStringList subCopyAttachements(const host::Item &source, const host::Item &target);
