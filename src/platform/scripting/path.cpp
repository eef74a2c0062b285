#include "platform/scripting/path.h"

namespace scripting {

QString nativePath(QString path) { return path.replace(u'\\', u'/'); }

QString pathText(QString path) { return path.replace(u'/', u'\\'); }

} // namespace scripting
