#include "platform/window/tree.h"

#include <QStyle>
#include <QTreeWidget>

namespace window {

namespace {

constexpr int keyRole = Qt::UserRole;

class Tree : public QTreeWidget {
  public:
    explicit Tree(Field &field) {
        setHeaderHidden(true);
        setSelectionMode(QAbstractItemView::SingleSelection);
        // Thousands of rows are laid out at once.
        setUniformRowHeights(true);
        fill(field);
        expandToDepth(0);
        connect(this, &QTreeWidget::currentItemChanged,
                [&field](QTreeWidgetItem *row) { field.value = row ? row->data(0, keyRole).toString() : QString(); });
    }

    [[nodiscard]] QSize sizeHint() const override { return {380, 340}; }

  protected:
    /// What is not laid out yet can't be brought into sight.
    void showEvent(QShowEvent *event) override {
        QTreeWidget::showEvent(event);
        if (currentItem() != nullptr)
            scrollToItem(currentItem(), QAbstractItemView::PositionAtCenter);
    }

  private:
    void fill(const Field &field) {
        const QIcon topIcon = style()->standardIcon(QStyle::SP_DriveHDIcon);
        const QIcon icon = style()->standardIcon(QStyle::SP_DirIcon);
        QList<QTreeWidgetItem *> way{invisibleRootItem()};
        for (const TreeRow &row : field.rows) {
            way.resize(std::clamp<qsizetype>(row.depth, 0, way.size() - 1) + 1);
            auto *item = new QTreeWidgetItem(way.last(), {row.caption});
            item->setIcon(0, way.size() == 1 ? topIcon : icon);
            item->setData(0, keyRole, row.key);
            way.append(item);
            if (row.key == field.value)
                setCurrentItem(item);
        }
    }
};

} // namespace

QWidget *makeTree(Field &field) { return new Tree(field); }

} // namespace window
