#include "setup/listwidget.h"

#include <QDropEvent>

namespace {

constexpr int headerRow = 0;
/// Above this a drop means the header, however the list is scrolled.
constexpr int headerHeightPx = 24;

} // namespace

void ListWidget::dropEvent(QDropEvent* event)
{
    const int row = currentRow();
    if (row <= headerRow || qRound(event->posF().y()) < headerHeightPx)
        return;
    QListWidget::dropEvent(event);
    // A drop on the upper half of a header that is higher than the limit puts the row above it.
    if (currentRow() == headerRow)
        model()->moveRow({}, headerRow, {}, headerRow + 2);
    emit indexChanged(row - 1, currentRow() - 1);
}
