/// A combo or list box in memory, true to the members that the lists rely on.
#pragma once

#include "orvelle/reference/control.h"
#include "platform/value/failure.h"

class FakeControl : public Control {
  public:
    enum class Kind {
        Combo,        ///< takes any text
        DropDownList, ///< takes the text of one of its rows alone
    };
    explicit FakeControl(Kind kind = Kind::Combo, const QString &strShown = {}) : m_kind(kind), m_text(strShown) {}

    [[nodiscard]] QString Text() const override { return m_text; }
    void SetText(const QString &strText) override {
        const auto row = rows().indexOf(strText);
        if (m_kind == Kind::DropDownList && row < 0)
            throw Failure(380, "Invalid property value");
        m_text = strText;
        m_index = static_cast<int>(row);
    }
    void Clear() override {
        m_rows.clear();
        m_text.clear();
        m_index = -1;
    }
    void AddItem(const QString &strText) override { m_rows.append(ValueList{strText}); }
    [[nodiscard]] int ListCount() const override { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] ::Value List(int intRow, int intColumn) const override {
        require(intRow);
        return m_rows[intRow].value(intColumn);
    }
    void SetList(int intRow, int intColumn, const ::Value &varValue) override {
        require(intRow);
        m_rows[intRow].resize(std::max<qsizetype>(m_rows[intRow].size(), intColumn + 1));
        m_rows[intRow][intColumn] = varValue;
    }
    [[nodiscard]] int ListIndex() const override { return m_index; }
    void SetListIndex(int intRow) override {
        require(intRow);
        m_index = intRow;
        m_text = rows()[intRow];
    }
    [[nodiscard]] ::Value Value() const override { return m_text; }
    void SetValue(const ::Value &varValue) override { SetText(std::get<QString>(varValue.held())); }

    /// The texts of the first column.
    [[nodiscard]] QStringList rows() const {
        QStringList texts;
        for (const ValueList &row : m_rows)
            texts.append(std::get<QString>(row.value(0).held()));
        return texts;
    }

  private:
    void require(int intRow) const {
        if (intRow < 0 || intRow >= m_rows.size())
            throw Failure(failures::subscriptOutOfRange);
    }

    Kind m_kind;
    QString m_text;
    QList<ValueList> m_rows;
    int m_index = -1;
};
