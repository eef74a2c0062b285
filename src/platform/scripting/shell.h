/// The shell components: the registry, the environment, and starting programs.
#pragma once

#include "platform/value/ref.h"

#include <QString>

namespace scripting {

class Shell {
  public:
    /// Fails with 0x80070002 for a missing value.
    [[nodiscard]] QString RegRead(const QString &name) const;
    /// \param type  "REG_SZ" is the one there is.
    void RegWrite(const QString &name, const QString &value, const QString &type = "REG_SZ") const;
    /// Replaces each %NAME%: by the environment's variable, %USERNAME% by the login name. A name that is not known
    /// stays as it is.
    [[nodiscard]] QString ExpandEnvironmentStrings(const QString &text) const;
    /// Starts a program with its arguments, cut at blanks outside of double quotes, or opens a link (web, mail, a file,
    /// a share of a server) in the application that the person chose for it. No command interpreter sees the text. Does
    /// not wait for the program. Fails with 0x80070002 when it can't be started, or when no application opens the link.
    void Run(const QString &command, qint32 windowStyle = 1) const;
    /// Brings the window of that title to the front; false where there is none.
    bool AppActivate(const QString &title) const;
};

/// A file in a folder, as the shell shows it.
class FolderItem {
  public:
    explicit FolderItem(QString path) : m_path(std::move(path)) {}
    [[nodiscard]] QString Path() const { return m_path; }
    /// No verb opens the file: a program is started, anything else goes to the application that the person chose for
    /// it. "Print" hands it to the printer, a page of HTML as a reader sees it. What can't be done gets the shell's own
    /// message and is no failure.
    /// Fails with 438 for a verb that the file doesn't have.
    void InvokeVerb(const QString &verb = {}) const;

  private:
    void open() const;
    void print() const;

    QString m_path;
};

class FolderItems {
  public:
    explicit FolderItems(QString folder) : m_folder(std::move(folder)) {}
    [[nodiscard]] qint32 Count() const;
    /// Nothing for a missing name.
    [[nodiscard]] Ref<FolderItem> Item(const QString &name) const;

  private:
    QString m_folder;
};

class ShellFolder {
  public:
    explicit ShellFolder(QString path) : m_path(std::move(path)) {}
    [[nodiscard]] FolderItems Items() const { return FolderItems(m_path); }

  private:
    QString m_path;
};

class ShellApplication {
  public:
    /// Nothing for a missing folder.
    [[nodiscard]] Ref<ShellFolder> NameSpace(const QString &folder) const;
};

} // namespace scripting
