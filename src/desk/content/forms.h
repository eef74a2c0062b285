/// Form definitions: what a message class of its own brings to a new item. They are data, in files that lie beside a
/// folder's home page, where all who use the folder find them, or in the profile.
#pragma once

#include "desk/store/records.h"

namespace desk {

/// The published forms.
///
/// A form definition is a file "*.fdm" with one JSON object: "messageClass" and "fields", a list of objects with
/// "name", "type" ("text", "number", "date" or "yesno") and, where a new item is to have one, "value" (dates as ISO
/// text). What else it holds is for the windows.
class Forms {
  public:
    explicit Forms(QString profileFolder) : m_profileFolder(std::move(profileFolder)) {}

    /// The custom properties of a new item of that class in that folder; none where no form of the class is published.
    /// The form beside the folder's home page wins over that of the profile. A file that can't be read is no form.
    QList<Property> fieldsOf(const QString &messageClass, const FolderRecord &folder);

  private:
    struct Form {
        QString messageClass;
        QList<Property> fields;
    };
    struct File {
        QDateTime changed;
        qint64 size = 0;
        std::optional<Form> form;
    };

    const Form *find(const QString &folder, const QString &messageClass);
    static std::optional<Form> read(const QString &path);

    QString m_profileFolder;
    std::map<QString, File> m_files;
};

/// The folder of a home page that is a local file ("file:..."), in the machine's own style; empty for any other page.
QString homePageFolder(const QString &url);
/// The file of such a page.
QString homePageFile(const QString &url);

} // namespace desk
