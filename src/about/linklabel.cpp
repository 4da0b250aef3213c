#include "about/linklabel.h"

#include "about/linkcolor.h"

#include <QFocusEvent>
#include <QTextDocument>

LinkLabel::LinkLabel(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::RichText);
    setTextInteractionFlags(Qt::TextBrowserInteraction);
    setOpenExternalLinks(true);
}

void LinkLabel::setLinks(const QString& html)
{
    // The same text once more would not be laid out anew.
    clear();
    setText(html);
    // Without a style sheet links take the colour that they have in the palette of the application,
    // and keep it when that changes.
    if (auto* document = findChild<QTextDocument*>())
        document->setDefaultStyleSheet(
            QStringLiteral("a { color: %1 }").arg(readableLinkColor(palette()).name()));
}

void LinkLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        setLinks(text());
}

/// The key that leads here leads to a link at once: no stop without a mark.
void LinkLabel::focusInEvent(QFocusEvent* event)
{
    QLabel::focusInEvent(event);
    const bool forward = event->reason() == Qt::TabFocusReason;
    const bool backward = event->reason() == Qt::BacktabFocusReason;
    if (forward || backward)
        focusNextPrevChild(forward);
}

/// Backwards from its first link, a label of Qt comes to the same link for ever.
bool LinkLabel::focusNextPrevChild(bool next)
{
    const int link = selectionStart();
    const bool moved = QLabel::focusNextPrevChild(next);
    const bool isStuck = hasFocus() && hasSelectedText() && selectionStart() == link;
    return isStuck ? QFrame::focusNextPrevChild(next) : moved;
}
