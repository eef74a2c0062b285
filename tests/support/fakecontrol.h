/// A combo or list box in memory, true to the members that the lists rely on.
#pragma once

#include "platform/controls/control.h"
#include "platform/value/failure.h"

class FakeControl : public controls::Control {
  public:
    enum class Kind {
        Combo,        ///< takes any text
        DropDownList, ///< takes the text of one of its rows alone
    };
    explicit FakeControl(Kind kind = Kind::Combo, const QString &shown = {}) : m_kind(kind), m_text(shown) {}

    [[nodiscard]] QString Text() const override { return m_text; }
    void SetText(const QString &text) override {
        const auto found = rows().indexOf(text);
        if (m_kind == Kind::DropDownList && found < 0)
            throw Failure(380, "Invalid property value");
        m_text = text;
        m_index = static_cast<int>(found);
    }
    void Clear() override {
        m_rows.clear();
        m_text.clear();
        m_index = -1;
    }
    void AddItem(const QString &text) override { m_rows.append(ValueList{text}); }
    void SetItems(const QStringList &texts) override {
        Clear();
        for (const QString &text : texts)
            AddItem(text);
    }
    [[nodiscard]] int ListCount() const override { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] ::Value List(int row, int column) const override {
        require(row);
        return m_rows[row].value(column);
    }
    void SetList(int row, int column, const ::Value &value) override {
        require(row);
        m_rows[row].resize(std::max<qsizetype>(m_rows[row].size(), column + 1));
        m_rows[row][column] = value;
    }
    [[nodiscard]] int ListIndex() const override { return m_index; }
    void SetListIndex(int row) override {
        require(row);
        m_index = row;
        m_text = rows()[row];
    }
    [[nodiscard]] ::Value Value() const override { return m_text; }
    void SetValue(const ::Value &value) override { SetText(std::get<QString>(value.held())); }

    [[nodiscard]] QRect place() const override { return {10, 20, 30, 40}; }
    [[nodiscard]] qint32 BackColor() const override { return m_color; }
    void SetBackColor(qint32 color) override { m_color = color; }

    /// The texts of the first column.
    [[nodiscard]] QStringList rows() const {
        QStringList texts;
        for (const ValueList &each : m_rows)
            texts.append(std::get<QString>(each.value(0).held()));
        return texts;
    }

  private:
    void require(int row) const {
        if (row < 0 || row >= m_rows.size())
            throw Failure(failures::subscriptOutOfRange);
    }

    Kind m_kind;
    QString m_text;
    QList<ValueList> m_rows;
    int m_index = -1;
    qint32 m_color = 5;
};
