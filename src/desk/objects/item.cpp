#include "desk/objects/item.h"

#include "desk/content/itemmessage.h"
#include "desk/mail/html.h"
#include "desk/objects/attachments.h"
#include "desk/objects/inspector.h"
#include "desk/objects/inspectors.h"
#include "desk/objects/itemwatch.h"
#include "desk/objects/mapifolder.h"
#include "desk/objects/openwindows.h"
#include "desk/objects/session.h"
#include "desk/objects/userproperties.h"
#include "desk/store/transfer.h"
#include "platform/print/printhtml.h"
#include "platform/value/convert.h"

#include <QCoreApplication>
#include <QScopeGuard>

namespace desk::objects {
namespace {

constexpr int plainFormat = 1;
constexpr int htmlFormat = 2;
constexpr int richFormat = 3;

constexpr int saveChanges = 0;
constexpr int discardChanges = 1;

constexpr qint32 moveRefused = failures::automation(0x80004004);

QString pageFromText(const QString &text) {
    return QStringLiteral("<html><body>%1</body></html>").arg(htmlFromText(text));
}

} // namespace

Item::Item(std::weak_ptr<desk::Session> session, Store &store, const ItemRecord &record)
    : ItemEvents(std::move(session)), m_content(store, record) {}

const ItemRecord &Item::fields() const {
    const std::shared_ptr<desk::Session> open = session();
    if (m_isGone)
        throw Failure(failures::itemGone);
    return m_content.fields();
}

ItemContent &Item::content() {
    const std::shared_ptr<desk::Session> open = session();
    if (m_isGone)
        throw Failure(failures::itemGone);
    return m_content;
}

void Item::tell(const char *name) {
    const auto alive = shared_from_this();
    Q_EMIT PropertyChange(QString::fromLatin1(name));
}

QString Item::body() { return content().bodies().plain; }

void Item::setBody(const QString &value) {
    Bodies bodies = content().bodies();
    if (bodies.plain == value)
        return;
    bodies.plain = value;
    if (bodyFormat() >= htmlFormat && !bodies.html.isEmpty())
        bodies.html = pageFromText(value);
    else if (bodyFormat() == 0)
        content().set(&ItemRecord::bodyFormat, plainFormat);
    content().setBodies(bodies);
    tell("Body");
}

QString Item::htmlBody() {
    const Bodies &bodies = content().bodies();
    if (bodyFormat() != plainFormat)
        return bodies.html;
    // A plain text as a page, so that who takes the page takes the text, with its lines and its angle brackets.
    return bodies.plain.isEmpty() ? QString() : pageFromText(bodies.plain);
}

void Item::setHtmlBody(const QString &value) {
    if (content().bodies().html == value && bodyFormat() == htmlFormat)
        return;
    content().set(&ItemRecord::bodyFormat, htmlFormat);
    if (content().bodies().html != value)
        content().setBodies({textFromHtml(value), value});
    tell("HTMLBody");
}

void Item::setBodyFormat(int value) {
    if (value < 0 || value > richFormat)
        throw Failure(failures::invalidCall);
    if (!content().set(&ItemRecord::bodyFormat, value))
        return;
    Bodies bodies = content().bodies();
    if (value == plainFormat && !bodies.html.isEmpty()) {
        bodies.html.clear();
        content().setBodies(bodies);
    } else if (value >= htmlFormat && bodies.html.isEmpty() && !bodies.plain.isEmpty()) {
        bodies.html = pageFromText(bodies.plain);
        content().setBodies(bodies);
    }
    tell("BodyFormat");
}

void Item::setImportance(int value) {
    if (value < 0 || value > 2)
        throw Failure(failures::invalidCall);
    put(&ItemRecord::importance, value, "Importance");
}

void Item::setSensitivity(int value) {
    if (value < 0 || value > 3)
        throw Failure(failures::invalidCall);
    put(&ItemRecord::sensitivity, value, "Sensitivity");
}

int Item::size() { return static_cast<int>(std::min<qint64>(content().size(), std::numeric_limits<int>::max())); }

bool Item::saved() const {
    static_cast<void>(fields());
    return !m_content.isNew() && !m_content.isChanged();
}

Value Item::parent() const { return automation::wrap(session()->folder(store(), fields().folder)); }

Value Item::Attachments(const Value &Index) {
    const auto attachments = std::make_shared<objects::Attachments>(weakSession(), self<Item>());
    return Index.isMissing() ? Value(automation::wrap(attachments)) : attachments->Item(Index);
}

Value Item::UserProperties(const Value &Name) {
    const auto properties = std::make_shared<objects::UserProperties>(weakSession(), self<Item>());
    return Name.isMissing() ? Value(automation::wrap(properties)) : properties->Item(Name);
}

void Item::putProperty(const Property &property) {
    const Property *standing = content().findProperty(property.name);
    if (standing && *standing == property)
        return;
    const auto alive = shared_from_this();
    content().putProperty(property);
    Q_EMIT CustomPropertyChange(property.name);
}

void Item::fillFrom(const QList<Property> &properties) {
    for (const Property &property : properties)
        content().putProperty(property);
}

void Item::Save() {
    const auto alive = shared_from_this();
    static_cast<void>(content());
    bool isCancelled = false;
    Q_EMIT Write(&isCancelled);
    if (!isCancelled && !m_isGone)
        commit();
}

void Item::commit() {
    if (saved())
        return;
    if (m_content.isNew())
        choosePlace();
    m_content.save();
    session()->watch().look();
}

void Item::Close(int SaveMode) {
    const auto alive = shared_from_this();
    static_cast<void>(content());
    // A handler that is told of the closing may close the item itself: the window is on its way out already.
    if (m_isClosing) {
        if (SaveMode != discardChanges && !saved())
            Save();
        return;
    }
    m_isClosing = true;
    const auto closed = qScopeGuard([this] { m_isClosing = false; });
    bool isCancelled = false;
    Q_EMIT ItemEvents::Close(&isCancelled);
    if (isCancelled)
        return;
    // A save that fails leaves the window open, with the changes in it.
    if (SaveMode == saveChanges && !saved())
        Save();
    closeWindow();
    if (m_isGone || saved())
        return;
    if (SaveMode == discardChanges) {
        if (!m_content.isNew())
            m_content.reload();
    } else if (m_content.isChanged()) {
        Save();
    }
}

Value Item::Copy() {
    const std::shared_ptr<desk::Session> open = session();
    ItemRecord copied;
    if (saved()) {
        copied = store().copy(fields().id);
    } else {
        ItemRecord record = fields();
        record.id = 0;
        copied = store().insert(record.folder, record, content().allParts());
    }
    open->watch().look();
    return automation::wrap(open->item(store(), copied));
}

Value Item::Move(const Value &DestFldr) {
    const auto folder = automation::exposedOf<MAPIFolder>(DestFldr);
    if (!folder)
        throw Failure(failures::objectNotSet);
    moveTo(folder->store(), folder->id());
    return automation::wrap(shared_from_this());
}

void Item::moveTo(Store &target, FolderId folder) {
    const auto alive = shared_from_this();
    const std::shared_ptr<desk::Session> open = session();
    if (content().isNew()) {
        m_content.setPlace(target, folder);
        m_content.save();
    } else {
        if (m_content.isChanged())
            Save();
        if (content().isChanged())
            throw Failure(moveRefused,
                          QStringLiteral("The item was not moved, for its changes were not saved: a handler of Write "
                                         "cancelled it. Correct the item or discard the changes, and move it again."));
        const bool isHere = &target == &store() && folder == fields().folder;
        if (!isHere) {
            const ItemRecord moved =
                &target == &store() ? store().move(fields(), folder) : moveBetween(store(), fields(), target, folder);
            m_content.moveTo(target, moved);
        }
    }
    closeWindow();
    open->watch().look();
}

void Item::Delete() {
    const auto alive = shared_from_this();
    const std::shared_ptr<desk::Session> open = session();
    if (!content().isNew()) {
        if (open->isIn(fields(), store(), SpecialFolder::DeletedItems)) {
            store().remove(fields());
        } else {
            const FolderRecord deleted = open->specialFolder(SpecialFolder::DeletedItems);
            if (&store() == &open->mailbox())
                store().move(fields(), deleted.id);
            else
                moveBetween(store(), fields(), open->mailbox(), deleted.id);
        }
    }
    m_isGone = true;
    closeWindow();
    open->watch().look();
}

std::shared_ptr<Inspector> Item::window() {
    Windows &windows = session()->windows();
    std::shared_ptr<Inspector> inspector = windows.inspectorOf(*this);
    if (!inspector)
        inspector = windows.inspectorCollection(weakSession())->open(self<Item>());
    return inspector;
}

Value Item::inspectorValue() {
    static_cast<void>(fields());
    return automation::wrap(window());
}

void Item::Display(const Value & /*Modal*/) {
    const auto alive = shared_from_this();
    static_cast<void>(content());
    const std::shared_ptr<Inspector> inspector = window();
    if (!inspector->isShown()) {
        bool isCancelled = false;
        Q_EMIT Open(&isCancelled);
        if (isCancelled) {
            closeWindow();
            return;
        }
    }
    inspector->Display();
}

void Item::closeWindow() {
    if (const std::shared_ptr<Inspector> inspector = session()->windows().inspectorOf(*this))
        inspector->end();
}

void Item::SaveAs(const QString &Path, const Value &Type) {
    constexpr int asText = 0;
    constexpr int asHtml = 5;
    const int type = Type.isMissing() ? 3 : toInt32(Type);
    if (type == asText)
        writeFile(Path, body().toUtf8());
    else if (type == asHtml)
        writeFile(Path, htmlBody().toUtf8());
    else
        writeFile(Path, messageBytes(content(), session()->profile()));
}

void Item::PrintOut() {
    const QString html = htmlBody();
    const QString page = html.isEmpty() ? htmlFromText(body()) : html;
    const QString title = subject().isEmpty() ? QStringLiteral("Printout") : subject();
    QMetaObject::invokeMethod(
        qApp, [page, title] { print::printHtml(page, title); }, Qt::QueuedConnection);
}

} // namespace desk::objects
