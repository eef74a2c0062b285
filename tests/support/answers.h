// Scripted answers: what a person at the display would answer, announced beforehand and used up.
#pragma once

#include "platform/window/window.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>

namespace support {

/// While it lives, every question of its program copy is answered from its list, in order. A question that was not
/// announced fails the test, and so does an announced one that was not asked.
///
/// REQUIRES: the copy outlives it.
class Answers {
  public:
    explicit Answers(ProgramCopy &copy = ProgramCopy::current()) : m_copy(copy), m_script(std::make_shared<Script>()) {
        const ProgramCopy::Scope scope(m_copy);
        window::asker = m_script;
    }
    ~Answers() {
        for (const Expected &left : m_script->expected)
            ADD_FAILURE() << "A question was not asked: " << left.part.toStdString();
        const ProgramCopy::Scope scope(m_copy);
        window::asker = nullptr;
    }
    Answers(const Answers &) = delete;
    Answers &operator=(const Answers &) = delete;

    /// A message box whose text holds that part.
    void expect(const QString &part, window::Answer answer = window::OK) {
        m_script->expected.push_back({part, answer, {}, {}, {}, false});
    }
    /// As `expect`; the step runs while the box is open.
    void expectDuring(const QString &part, std::function<void()> step, window::Answer answer = window::OK) {
        m_script->expected.push_back({part, answer, {}, {}, std::move(step), false});
    }
    /// A dialog of that name, the values that are put into its controls, and the button pressed.
    void expectSheet(const QString &name, const QString &button, const std::map<QString, QString> &values = {}) {
        m_script->expected.push_back({name, window::OK, button, values, {}, true});
    }

    /// Everything that was asked, in order.
    [[nodiscard]] const QList<window::Question> &asked() const { return m_script->asked; }
    [[nodiscard]] const QList<window::Sheet> &shown() const { return m_script->shown; }

  private:
    struct Expected {
        QString part;
        window::Answer answer;
        QString button;
        std::map<QString, QString> values;
        std::function<void()> during;
        bool isSheet;
    };

    struct Script : window::Asker {
        window::Answer ask(const window::Question &question) override {
            asked.append(question);
            if (expected.empty() || expected.front().isSheet || !question.text.contains(expected.front().part)) {
                ADD_FAILURE() << "Unexpected question: " << question.text.toStdString();
                return question.cautious;
            }
            const Expected now = take();
            if (now.during)
                now.during();
            return now.answer;
        }
        QString show(window::Sheet &sheet) override {
            shown.append(sheet);
            if (expected.empty() || !expected.front().isSheet || sheet.name != expected.front().part) {
                ADD_FAILURE() << "Unexpected dialog: " << sheet.name.toStdString();
                return sheet.cautious;
            }
            const Expected now = take();
            for (const auto &[name, value] : now.values)
                put(sheet, name, value);
            return now.button;
        }
        static void put(window::Sheet &sheet, const QString &name, const QString &value) {
            for (window::Field &field : sheet.fields) {
                if (field.name == name) {
                    field.value = value;
                    return;
                }
            }
            ADD_FAILURE() << "The dialog " << sheet.name.toStdString() << " has no " << name.toStdString();
        }
        Expected take() {
            Expected first = std::move(expected.front());
            expected.pop_front();
            return first;
        }

        std::deque<Expected> expected;
        QList<window::Question> asked;
        QList<window::Sheet> shown;
    };

    ProgramCopy &m_copy;
    std::shared_ptr<Script> m_script;
};

} // namespace support
