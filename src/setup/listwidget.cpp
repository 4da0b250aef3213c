#include "setup/listwidget.h"

#include <QDropEvent>

namespace {

constexpr int headerRow = 0;
/// Above this a drop means the header, however the list is scrolled.
constexpr int headerHeightPx = 24;

} // namespace

bool ListWidget::isOnHeader(int y) const
{
    // The upper half of a header that is higher would take the row above it.
    const QListWidgetItem* header = item(headerRow);
    return y < headerHeightPx || (header && y < visualItemRect(header).center().y());
}

void ListWidget::dropEvent(QDropEvent* event)
{
    const int row = currentRow();
    if (row <= headerRow || isOnHeader(qRound(event->posF().y())))
        return;
    QListWidget::dropEvent(event);
    emit indexChanged(row - 1, currentRow() - 1);
}
