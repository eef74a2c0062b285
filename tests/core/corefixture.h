// One copy of the program in a folder of its own, in English, with nobody at the display but the script.
#pragma once

#include "core/entry.h"
#include "core/errorhandler.h"
#include "core/phrases.h"
#include "core/process.h"
#include "core/trace.h"
#include "platform/registry/registry.h"
#include "platform/scripting/path.h"
#include "support/answers.h"
#include "support/launches.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

class Core : public testing::Test {
  protected:
    void SetUp() override {
        Region::set(QLocale(QLocale::English, QLocale::UnitedStates));
        Clock::set(DateTime{DateTime::fromDate(2024, 3, 5).days + 0.5});
        strProgramFolderOverride = scripting::pathText(folder.path());
        registry::fileOverride = folder.filePath("registry.ini");
        LoadLanguages(1);
        processHooks->subReleaseAll = [this] { ++releases; };
        processHooks->ended = [this] { ++ends; };
    }
    void TearDown() override {
        Clock::release();
        Region::set(std::nullopt);
    }

    /// Runs a step as the program runs it; gives whether it ended the process.
    bool endsProcess(const std::function<void()> &step) {
        try {
            step();
        } catch (const ProcessEnd &) {
            return true;
        }
        return false;
    }
    QString at(const QString &name) const { return scripting::pathText(folder.path()) + "\\" + name; }
    QByteArray bytes(const QString &name) const {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    void put(const QString &name, const QByteArray &content = {}) const {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir folder;
    ProgramCopy copy;
    ProgramCopy::Scope scope{copy};
    support::Answers answers;
    support::Launches launches;
    int releases = 0;
    int ends = 0;
};
