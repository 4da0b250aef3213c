#pragma once

#include <QDialog>

/// A small window beside the main one that stops nobody. Its size is fixed: that of its form, or
/// larger where its texts need more room, also when they change.
class ToolDialog : public QDialog
{
    Q_OBJECT

protected:
    explicit ToolDialog(QWidget* parent);

    /// To be called once the form is set up.
    void fixSize();
    bool event(QEvent* event) override;
};
