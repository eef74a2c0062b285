/// A folder.
#pragma once

#include "desk/objects/sessionobject.h"
#include "desk/store/store.h"

namespace desk::objects {

/// Reads its folder anew at each use, so it never shows what another process has changed. Fails with 0x8004010F once
/// the folder is gone.
class MAPIFolder : public SessionObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ name WRITE setName)
    Q_PROPERTY(QString EntryID READ entryId)
    Q_PROPERTY(QString StoreID READ storeId CONSTANT)
    Q_PROPERTY(QString FolderPath READ folderPath)
    Q_PROPERTY(Value Parent READ parent)
    Q_PROPERTY(int DefaultItemType READ defaultItemType)
    Q_PROPERTY(QString DefaultMessageClass READ defaultMessageClass)
    Q_PROPERTY(bool WebViewOn READ webViewOn WRITE setWebViewOn)
    Q_PROPERTY(QString WebViewURL READ webViewUrl WRITE setWebViewUrl)
    Q_PROPERTY(int UnReadItemCount READ unreadItemCount)
    Q_PROPERTY(int Class READ objectClass)

  public:
    MAPIFolder(std::weak_ptr<desk::Session> session, Store &store, FolderId id);

    [[nodiscard]] Store &store() const { return *m_store; }
    [[nodiscard]] FolderId id() const { return m_id; }
    [[nodiscard]] FolderRecord record() const;

    [[nodiscard]] QString name() const { return record().name; }
    void setName(const QString &name);
    [[nodiscard]] QString entryId() const { return record().entryId; }
    [[nodiscard]] QString storeId() const;
    /// "\\Top\Middle\Folder".
    [[nodiscard]] QString folderPath() const;
    /// A folder, or the session above a top folder.
    [[nodiscard]] Value parent() const;
    [[nodiscard]] int defaultItemType() const { return record().defaultItemType; }
    [[nodiscard]] QString defaultMessageClass() const;
    [[nodiscard]] bool webViewOn() const { return record().homePageOn; }
    void setWebViewOn(bool on);
    [[nodiscard]] QString webViewUrl() const { return record().homePageUrl; }
    void setWebViewUrl(const QString &url);
    [[nodiscard]] int unreadItemCount() const;
    [[nodiscard]] int objectClass() const { return 2; }

    Q_INVOKABLE Value Folders(const Value &Index = Value::Missing{});
    Q_INVOKABLE Value Items(const Value &Index = Value::Missing{});
    /// Shows the folder in a window of its own.
    Q_INVOKABLE void Display();
    /// Into the deleted items; for ever from there and in the public folders.
    Q_INVOKABLE void Delete();
    /// To another folder of the same store.
    Q_INVOKABLE void MoveTo(const Value &DestinationFolder);

  private:
    template <class T>
    void write(T FolderRecord::*field, const T &value);

    Store *m_store;
    FolderId m_id;
};

} // namespace desk::objects
