#pragma once

#include <QListWidget>

/// A list whose rows can be dragged below its header, which is row 0.
class ListWidget final : public QListWidget
{
    Q_OBJECT

public:
    using QListWidget::QListWidget;

    /// Moves the current row to where it was dropped, unless it is the header or was dropped on it.
    /// It never comes above the header.
    void dropEvent(QDropEvent* event) override;

signals:
    /// A row was dropped. The indices do not count the header.
    void indexChanged(int oldIndex, int newIndex);
};
