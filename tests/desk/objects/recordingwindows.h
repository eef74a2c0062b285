/// Windows that nobody sees: they note what the objects ask of them.
#pragma once

#include "desk/objects/explorer.h"
#include "desk/objects/inspector.h"
#include "desk/objects/windowfactory.h"

#include <gtest/gtest.h>

#include <QStringList>

/// One line a request, in order: "Explorer 1 shown as Inbox". A request out of order fails the test: nothing comes
/// before the window is shown or after it was closed, and each is closed once.
class RecordingWindows : public desk::WindowFactory {
  public:
    explicit RecordingWindows(std::shared_ptr<QStringList> log) : m_log(std::move(log)) {}

    std::optional<desk::FolderPlace> pickFolder(desk::Session & /*session*/) override { return {}; }
    std::unique_ptr<desk::ShownWindow> makeWindow(desk::objects::Explorer & /*explorer*/) override {
        return std::make_unique<Window>(*this, QStringLiteral("Explorer %1").arg(++m_made));
    }
    std::unique_ptr<desk::ShownWindow> makeWindow(desk::objects::Inspector & /*inspector*/) override {
        return std::make_unique<Window>(*this, QStringLiteral("Inspector %1").arg(++m_made));
    }

  private:
    class Window : public desk::ShownWindow {
      public:
        Window(const RecordingWindows &factory, QString name) : m_log(factory.m_log), m_name(std::move(name)) {}
        ~Window() override { EXPECT_TRUE(m_isClosed) << m_name.toStdString() << " was dropped without being closed"; }
        void show(const QString &caption, int state) override {
            EXPECT_FALSE(std::exchange(m_isShown, true)) << m_name.toStdString();
            note(QStringLiteral("shown as %1, state %2").arg(caption).arg(state));
        }
        void bringToFront() override { note("to front"); }
        void setCaption(const QString &caption) override { note("captioned " + caption); }
        void setState(int state) override { note(QStringLiteral("state %1").arg(state)); }
        void close() override {
            note("closed");
            m_isClosed = true;
        }

      private:
        void note(const QString &what) {
            EXPECT_TRUE(m_isShown && !m_isClosed) << m_name.toStdString() << ": " << what.toStdString();
            m_log->append(m_name + " " + what);
        }

        std::shared_ptr<QStringList> m_log;
        QString m_name;
        bool m_isShown = false;
        bool m_isClosed = false;
    };

    std::shared_ptr<QStringList> m_log;
    int m_made = 0;
};
