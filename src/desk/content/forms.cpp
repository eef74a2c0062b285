#include "desk/content/forms.h"

#include "desk/content/itemmessage.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace desk {
namespace {

constexpr qint64 maximumFileSize = 4'194'304;

std::optional<PropertyType> typeOf(const QString &name) {
    static const QHash<QString, PropertyType> types{{QStringLiteral("text"), PropertyType::Text},
                                                    {QStringLiteral("number"), PropertyType::Number},
                                                    {QStringLiteral("date"), PropertyType::Date},
                                                    {QStringLiteral("yesno"), PropertyType::YesNo}};
    const auto found = types.constFind(name);
    return found == types.constEnd() ? std::nullopt : std::optional(*found);
}

Value valueOf(PropertyType type, const QJsonValue &value) {
    if (value.isUndefined() || value.isNull())
        return {};
    switch (type) {
    case PropertyType::Number:
        return value.toDouble();
    case PropertyType::YesNo:
        return value.toBool();
    case PropertyType::Date: {
        const QDateTime moment = QDateTime::fromString(value.toString(), Qt::ISODate);
        return moment.isValid() ? Value(DateTime::fromQt(moment)) : Value();
    }
    case PropertyType::Text:
        break;
    }
    return value.toString();
}

} // namespace

QList<Property> Forms::fieldsOf(const QString &messageClass, const FolderRecord &folder) {
    for (const QString &place : {homePageFolder(folder.homePageUrl), m_profileFolder}) {
        if (const Form *form = find(place, messageClass))
            return form->fields;
    }
    return {};
}

const Forms::Form *Forms::find(const QString &folder, const QString &messageClass) {
    if (folder.isEmpty())
        return nullptr;
    for (const QFileInfo &info : QDir(folder).entryInfoList({QStringLiteral("*.fdm")}, QDir::Files, QDir::Name)) {
        File &file = m_files[info.filePath()];
        if (file.changed != info.lastModified() || file.size != info.size())
            file = {info.lastModified(), info.size(), read(info.filePath())};
        if (file.form && file.form->messageClass.compare(messageClass, Qt::CaseInsensitive) == 0)
            return &*file.form;
    }
    return nullptr;
}

std::optional<Forms::Form> Forms::read(const QString &path) {
    QFile file(path);
    if (file.size() > maximumFileSize || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    Form form;
    form.messageClass = object[QStringLiteral("messageClass")].toString();
    if (form.messageClass.isEmpty())
        return std::nullopt;
    for (const QJsonValue field : object[QStringLiteral("fields")].toArray()) {
        const QString name = field[QStringLiteral("name")].toString();
        const auto type = typeOf(field[QStringLiteral("type")].toString());
        if (!name.isEmpty() && type)
            form.fields.append({name, *type, valueOf(*type, field[QStringLiteral("value")])});
    }
    return form;
}

QString homePageFile(const QString &url) {
    const QString prefix = QStringLiteral("file:");
    if (!url.startsWith(prefix, Qt::CaseInsensitive))
        return {};
    QString path = nativePath(url.mid(prefix.size()));
    while (path.startsWith(QStringLiteral("//")))
        path.remove(0, 1);
    return path;
}

QString homePageFolder(const QString &url) {
    const QString file = homePageFile(url);
    return file.isEmpty() ? QString() : QFileInfo(file).path();
}

} // namespace desk
