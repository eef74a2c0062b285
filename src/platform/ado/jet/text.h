/// How the embedded engine compares texts: without regard to case, in any alphabet.
#pragma once

#include <QCollator>
#include <QStringView>

namespace ado {

/// The order of texts in sorted selections: alphabetical by the general sort order, the same on every machine.
/// Texts are equal in it exactly when `equalText` says so.
class TextOrder {
  public:
    TextOrder();
    /// Below, equal to or above 0.
    [[nodiscard]] int compare(QStringView left, QStringView right) const;

  private:
    QCollator m_collator;
};

/// `text Like pattern`: "%" stands for any run of characters, "_" for one, "[a-f]" for one of these and "[!a-f]" for
/// one of no such. A bracket that is not closed stands for itself. Takes time in proportion to the lengths' product at
/// most.
bool likeText(QStringView text, QStringView pattern);

} // namespace ado
