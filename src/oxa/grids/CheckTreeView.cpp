#include "oxa/grids/CheckTreeView.h"

#include "oxa/grids/CheckTreeView_p.h"
#include "oxa/toolkit/Catalogue.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace oxa {

namespace {

// The gap left of the state image and between it and the item.
constexpr int kStateMargin = 2;

QPixmap StateImage(const char *name)
{
    return QPixmap(QStringLiteral(":/oxa/CheckTreeView/") + QLatin1String(name));
}

} // namespace

// --- the delegate ----------------------------------------------------------

TCheckTreeViewDelegate::TCheckTreeViewDelegate(const std::array<QPixmap, 4> &Images,
                                               QObject *parent)
    : QStyledItemDelegate(parent), m_images(Images)
{ }

int TCheckTreeViewDelegate::StateOf(const QModelIndex &index)
{
    if (index.column() != 0)
        return itvNil;
    const QVariant state = index.data(Qt::CheckStateRole);
    return state.isValid() ? state.toInt() + 1 : itvNil;
}

int TCheckTreeViewDelegate::Reserved() const
{
    return kStateMargin + m_images[itvUnchecked].width() + kStateMargin;
}

QRect TCheckTreeViewDelegate::StateRect(const QRect &Cell) const
{
    const QSize size = m_images[itvUnchecked].size();
    return QRect(Cell.x() + kStateMargin, Cell.y() + (Cell.height() - size.height()) / 2,
                 size.width(), size.height());
}

void TCheckTreeViewDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                   const QModelIndex &index) const
{
    const int state = StateOf(index);
    if (state <= itvNil) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    if (state <= itvChecked)
        painter->drawPixmap(StateRect(option.rect).topLeft(), m_images[state]);
    QStyleOptionViewItem rest = option;
    rest.rect.setLeft(option.rect.left() + Reserved());
    QStyledItemDelegate::paint(painter, rest, index);
}

QSize TCheckTreeViewDelegate::sizeHint(const QStyleOptionViewItem &option,
                                       const QModelIndex &index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (StateOf(index) > itvNil) {
        size.rwidth() += Reserved();
        size.setHeight(std::max(size.height(), m_images[itvUnchecked].height()));
    }
    return size;
}

// The tree toggles its nodes itself; Qt's check boxes never change a state.
bool TCheckTreeViewDelegate::editorEvent(QEvent *event, QAbstractItemModel *model,
                                         const QStyleOptionViewItem &option,
                                         const QModelIndex &index)
{
    Q_UNUSED(event);
    Q_UNUSED(model);
    Q_UNUSED(option);
    Q_UNUSED(index);
    return false;
}

void TCheckTreeViewDelegate::initStyleOption(QStyleOptionViewItem *option,
                                             const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->features &= ~QStyleOptionViewItem::HasCheckIndicator;
}

// --- batches of state changes ------------------------------------------------

TCheckTreeView::Private::Batch::Batch(Private &p, TCheckTreeView *tree) : m_p(p), m_tree(tree)
{
    if (m_p.batchDepth++ == 0)
        m_p.modelWasBlocked = m_tree->model()->blockSignals(true);
}

TCheckTreeView::Private::Batch::~Batch()
{
    if (--m_p.batchDepth == 0) {
        m_tree->model()->blockSignals(m_p.modelWasBlocked);
        m_tree->viewport()->update();
    }
}

// --- the tree --------------------------------------------------------------

TCheckTreeView::TCheckTreeView(QWidget *parent)
    : TWinControl<QTreeWidget>(parent), d(std::make_unique<Private>())
{
    d->ikona = {StateImage("UNCHECKED"), StateImage("UNCHECKED"), StateImage("GREYCHECKED"),
                StateImage("CHECKED")};
    d->delegate = new TCheckTreeViewDelegate(d->ikona, this);
    setItemDelegate(d->delegate);
    setHeaderHidden(true);
}

TCheckTreeView::~TCheckTreeView()
{
    // The delegate refers to the images, which go with d.
    setItemDelegate(nullptr);
    delete d->delegate;
}

int TCheckTreeView::StateIndex(const QTreeWidgetItem *Node)
{
    const QVariant state = Node->data(0, Qt::CheckStateRole);
    return state.isValid() ? state.toInt() + 1 : itvNil;
}

void TCheckTreeView::SetStateIndex(QTreeWidgetItem *Node, int StateIndex)
{
    Node->setData(0, Qt::CheckStateRole,
                  StateIndex > itvNil ? QVariant(StateIndex - 1) : QVariant());
}

bool TCheckTreeView::DisablePropageCheckClick() const
{
    return d->DisablePropageCheckClick;
}

void TCheckTreeView::SetDisablePropageCheckClick(bool Value)
{
    d->DisablePropageCheckClick = Value;
}

// A node without a check box has nothing to toggle (4 - 0 would be no state).
void TCheckTreeView::StateImageClick(QTreeWidgetItem *Node)
{
    if (!Node || StateIndex(Node) <= itvNil)
        return;
    {
        Private::Batch batch(*d, this);
        const int state = StateIndex(Node);
        const int newState = state == itvGrayChecked ? itvUnchecked : 4 - state;
        SetStateIndex(Node, newState);
        RefreshParent(Node);
        if (newState != itvGrayChecked)
            CTVSetChild(Node, newState);
        CTVSetParent(Node);
    }
    Q_EMIT stateImageClicked(Node);
}

void TCheckTreeView::CTVSetChild(QTreeWidgetItem *Node, int StateIndex)
{
    Private::Batch batch(*d, this);
    for (int i = 0; i < Node->childCount(); ++i) {
        QTreeWidgetItem *child = Node->child(i);
        if (TCheckTreeView::StateIndex(child) <= itvNil)
            continue;
        if (child->childCount() > 0)
            CTVSetChild(child, StateIndex);
        SetStateIndex(child, StateIndex);
    }
    if (TCheckTreeView::StateIndex(Node) > itvNil)
        SetStateIndex(Node, StateIndex);
}

void TCheckTreeView::CTVSetParent(QTreeWidgetItem *Node)
{
    Private::Batch batch(*d, this);
    for (QTreeWidgetItem *parent = Node->parent(); parent; parent = parent->parent()) {
        int common = -1;
        for (int i = 0; i < parent->childCount(); ++i) {
            const int state = StateIndex(parent->child(i));
            if (state <= itvNil)
                continue;
            if (common == -1)
                common = state;
            else if (state != common)
                common = itvGrayChecked;
        }
        if (common > itvNil)
            SetStateIndex(parent, common);
    }
}

void TCheckTreeView::RefreshParent(QTreeWidgetItem *Node)
{
    QTreeWidgetItem *parent = Node->parent();
    if (!parent)
        return;
    Private::Batch batch(*d, this);
    const int state = StateIndex(Node);
    SetStateIndex(parent, state);
    for (int i = 0; i < parent->childCount(); ++i) {
        if (StateIndex(parent->child(i)) != state) {
            SetStateIndex(parent, itvGrayChecked);
            return;
        }
    }
}

QRect TCheckTreeView::StateImageRect(QTreeWidgetItem *Node) const
{
    if (!Node || StateIndex(Node) <= itvNil)
        return {};
    const QRect cell = visualItemRect(Node);
    if (!cell.isValid())
        return {};
    return d->delegate->StateRect(cell);
}

bool TCheckTreeView::OnStateImage(const QPoint &Position, QTreeWidgetItem *&Node) const
{
    Node = itemAt(Position);
    return Node && StateImageRect(Node).contains(Position);
}

void TCheckTreeView::StateImageAction(QTreeWidgetItem *Node)
{
    if (OnStateImageClick)
        Safely([&] { OnStateImageClick(this, Node); });
    else
        StateImageClick(Node);
}

// A click is the release of the left button on the state image, after Qt's
// own handling of the release.
void TCheckTreeView::mouseReleaseEvent(QMouseEvent *event)
{
    TWinControl<QTreeWidget>::mouseReleaseEvent(event);
    QTreeWidgetItem *node = nullptr;
    if (event->button() == Qt::LeftButton && OnStateImage(event->position().toPoint(), node))
        StateImageAction(node);
}

// The second press of a double click on a state image is one more click: it
// neither expands nor collapses the node.
void TCheckTreeView::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTreeWidgetItem *node = nullptr;
    if (event->button() == Qt::LeftButton && OnStateImage(event->position().toPoint(), node)) {
        TWinControl<QTreeWidget>::mousePressEvent(event);
        return;
    }
    TWinControl<QTreeWidget>::mouseDoubleClickEvent(event);
}

void TCheckTreeView::keyReleaseEvent(QKeyEvent *event)
{
    d->autoRepeatRelease = event->isAutoRepeat();
    TWinControl<QTreeWidget>::keyReleaseEvent(event);
}

// The release of Enter expands or collapses the current node, the release
// of Space acts as a click on its state image; a held key acts once, when it
// is let go. A handler of OnKeyUp that consumes the key stops both.
void TCheckTreeView::KeyUp(Word &Key, TShiftState Shift)
{
    TWinControl<QTreeWidget>::KeyUp(Key, Shift);
    QTreeWidgetItem *node = currentItem();
    if (!node || d->autoRepeatRelease)
        return;
    if (Key == VK_RETURN)
        node->setExpanded(!node->isExpanded());
    else if (Key == VK_SPACE && StateIndex(node) > itvNil)
        StateImageAction(node);
}

void RegisterCheckTreeView()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TCheckTreeView>(
        QStringLiteral("Oxa"), QStringLiteral("TCheckTreeView"), QStringLiteral("CheckTreeView"),
        QStringLiteral("oxa/grids/CheckTreeView.h"))});
}

} // namespace oxa
