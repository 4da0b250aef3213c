#pragma once

#include <QLabel>

/// A label with links, which the desktop opens. Tab goes from link to link, and their colour can
/// be read under every palette.
class LinkLabel final : public QLabel
{
    Q_OBJECT

public:
    explicit LinkLabel(QWidget* parent = nullptr);

    /// Shows rich text with links.
    void setLinks(const QString& html);

protected:
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
};
