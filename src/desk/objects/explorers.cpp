#include "desk/objects/explorers.h"

#include "desk/objects/explorer.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"

namespace desk::objects {

int Explorers::count() const { return static_cast<int>(session()->windows().explorers().size()); }

Value Explorers::Item(const Value &Index) {
    const auto &explorers = session()->windows().explorers();
    return automation::wrap(explorers.at(positionFrom(Index, explorers.size())));
}

Value Explorers::Add(const Value &Folder, const Value & /*DisplayMode*/) {
    const auto folder = automation::exposedOf<MAPIFolder>(Folder);
    if (!folder)
        throw Failure(failures::objectNotSet);
    static_cast<void>(folder->record());
    return automation::wrap(open(folder));
}

std::shared_ptr<Explorer> Explorers::open(const std::shared_ptr<MAPIFolder> &folder) {
    const auto explorer = std::make_shared<Explorer>(weakSession(), folder);
    session()->windows().add(explorer);
    Q_EMIT NewExplorer(automation::wrap(explorer));
    return explorer;
}

} // namespace desk::objects
