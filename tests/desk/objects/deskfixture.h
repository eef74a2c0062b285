/// A desk on a temporary profile, driven as a client drives it.
#pragma once

#include "desk/host/desk.h"
#include "platform/value/convert.h"
#include "support/files.h"
#include "support/steps.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

/// An object of the host as a client sees it.
class Handle {
  public:
    Handle(automation::ObjectPtr object = nullptr) : m_object(std::move(object)) {}
    Handle(const Value &value) : m_object(value.object()) {}

    [[nodiscard]] bool isNothing() const { return m_object == nullptr; }
    [[nodiscard]] Value get(const QString &member) const { return checked().get(member); }
    [[nodiscard]] Handle of(const QString &member, const ValueList &arguments = {}) const {
        return checked().call(member, arguments);
    }
    [[nodiscard]] QString text(const QString &member) const { return toText(get(member)); }
    [[nodiscard]] int number(const QString &member) const { return toInt32(get(member)); }
    void put(const QString &member, const Value &value) const { checked().put(member, value); }
    Value call(const QString &member, const ValueList &arguments = {}) const {
        return checked().call(member, arguments);
    }
    [[nodiscard]] QString typeName() const { return checked().typeName(); }
    [[nodiscard]] automation::SubscriptionPtr on(const QString &event, automation::EventHandler handler) const {
        return checked().connect(event, std::move(handler));
    }
    operator Value() const { return m_object; }
    friend bool operator==(const Handle &left, const Handle &right) {
        return left.m_object && right.m_object && left.m_object->isSame(*right.m_object);
    }

  private:
    [[nodiscard]] automation::Object &checked() const {
        if (!m_object)
            throw Failure(failures::objectNotSet);
        return *m_object;
    }

    automation::ObjectPtr m_object;
};

/// An event's calls, each as the texts of its arguments that are no objects.
class Recorder {
  public:
    Recorder(const Handle &object, const QString &event)
        : m_subscription(object.on(event, [this](ValueList &arguments) {
              QStringList texts;
              for (const Value &argument : arguments) {
                  if (argument.isObject())
                      m_objects.append(Handle(argument));
                  else
                      texts.append(toText(argument));
              }
              m_calls.append(texts.join(u','));
          })) {}

    [[nodiscard]] const QStringList &calls() const { return m_calls; }
    [[nodiscard]] qsizetype count() const { return m_calls.size(); }
    [[nodiscard]] const QList<Handle> &objects() const { return m_objects; }

  private:
    QStringList m_calls;
    QList<Handle> m_objects;
    automation::SubscriptionPtr m_subscription;
};

class DeskTest : public ::testing::Test {
  protected:
    [[nodiscard]] desk::DeskOptions options() const { return {.profile = m_folder.path(), .user = "Alma Tester"}; }
    [[nodiscard]] QString file(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] Handle application() const { return m_desk->application(); }
    [[nodiscard]] Handle session() const { return application().of("GetNamespace", {"MAPI"}); }
    [[nodiscard]] Handle folder(int number) const { return session().of("GetDefaultFolder", {number}); }
    /// A folder of the public folders, made where it is missing.
    [[nodiscard]] Handle publicFolder(const QString &name) const {
        const Handle folders = session().of("Folders", {"Public Folders"}).of("Folders");
        const auto standing = AttemptOr([&] { return folders.of("Item", {name}); }, Handle());
        return standing.isNothing() ? folders.of("Add", {name, 6}) : standing;
    }
    [[nodiscard]] static Handle newItem(const Handle &folder, const QString &messageClass,
                                        const QString &subject = {}) {
        const Handle item = folder.of("Items").of("Add", {messageClass});
        item.put("Subject", subject);
        return item;
    }
    [[nodiscard]] static Handle savedItem(const Handle &folder, const QString &messageClass, const QString &subject) {
        const Handle item = newItem(folder, messageClass, subject);
        item.call("Save");
        return item;
    }
    [[nodiscard]] static QStringList subjects(const Handle &folder) {
        QStringList all;
        const Handle items = folder.of("Items");
        for (int i = 1; i <= items.number("Count"); ++i)
            all.append(items.of("Item", {i}).text("Subject"));
        return all;
    }
    QString written(const QString &name, const QByteArray &bytes) const { return writtenFile(file(name), bytes); }
    void reopen() {
        m_desk.reset();
        m_desk = std::make_unique<desk::Desk>(options());
    }

    QTemporaryDir m_folder;
    std::unique_ptr<desk::Desk> m_desk = std::make_unique<desk::Desk>(options());
};
