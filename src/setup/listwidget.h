#pragma once

#include <QListWidget>

/// A list whose rows can be dragged below its header, which is row 0.
class ListWidget final : public QListWidget
{
    Q_OBJECT

public:
    using QListWidget::QListWidget;

signals:
    /// A row was dropped. The indices do not count the header.
    void indexChanged(int oldIndex, int newIndex);

protected:
    void dropEvent(QDropEvent* event) override;

private:
    bool isOnHeader(int y) const;
};
