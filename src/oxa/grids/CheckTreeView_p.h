#pragma once

#include "oxa/grids/CheckTreeView.h"

#include <QPixmap>
#include <QStyledItemDelegate>

#include <array>

namespace oxa {

// Draws a node's state image left of what the style draws for the item, and
// keeps Qt's own check indicator and its toggling out.
class TCheckTreeViewDelegate : public QStyledItemDelegate
{
public:
    TCheckTreeViewDelegate(const std::array<QPixmap, 4> &Images, QObject *parent);

    // The state image's place in an item's cell: a small margin in from the
    // left, centred vertically.
    QRect StateRect(const QRect &Cell) const;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    static int StateOf(const QModelIndex &index);
    int Reserved() const;

    const std::array<QPixmap, 4> &m_images;
};

class TCheckTreeView::Private
{
public:
    bool fImageListFromRes = true;
    // The state images by state index: 0 only holds the place of the state
    // that is never drawn.
    std::array<QPixmap, 4> ikona;
    bool DisablePropageCheckClick = false;
    TCheckTreeViewDelegate *delegate = nullptr;
    // A change of many states is painted once: while it runs, the model
    // does not report every node to the view; the viewport is repainted when
    // the outermost change ends.
    class Batch
    {
    public:
        Batch(Private &p, TCheckTreeView *tree);
        ~Batch();
        Batch(const Batch &) = delete;
        Batch &operator=(const Batch &) = delete;

    private:
        Private &m_p;
        TCheckTreeView *m_tree;
    };
    int batchDepth = 0;
    bool modelWasBlocked = false;
    // Whether the key release being handled is an automatic repetition.
    bool autoRepeatRelease = false;
};

} // namespace oxa
