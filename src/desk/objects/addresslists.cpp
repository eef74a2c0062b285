#include "desk/objects/addresslists.h"

#include "desk/objects/addresslist.h"
#include "desk/objects/session.h"
#include "platform/value/convert.h"

namespace desk::objects {

int AddressLists::count() const { return static_cast<int>(session()->directory().folders().size()); }

Value AddressLists::Item(const Value &Index) {
    const QList<ContactsFolder> folders = session()->directory().folders();
    if (!Index.isText())
        return automation::wrap(
            std::make_shared<AddressList>(weakSession(), folders.at(positionFrom(Index, folders.size()))));
    for (const ContactsFolder &folder : folders) {
        if (folder.folder.name == toText(Index))
            return automation::wrap(std::make_shared<AddressList>(weakSession(), folder));
    }
    throw Failure(failures::notFound);
}

} // namespace desk::objects
