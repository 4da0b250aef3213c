#include "plots/tooldialog.h"

#include <QEvent>

namespace {

constexpr QSize formSize(260, 120);

} // namespace

ToolDialog::ToolDialog(QWidget* parent)
    : QDialog(parent, Qt::Tool)
{}

void ToolDialog::fixSize()
{
    setFixedSize(formSize.expandedTo(sizeHint()));
}

bool ToolDialog::event(QEvent* event)
{
    const bool isTaken = QDialog::event(event);
    // A text, a range or a font has changed.
    if (event->type() == QEvent::LayoutRequest)
        fixSize();
    return isTaken;
}
