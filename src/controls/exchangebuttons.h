#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <vector>

class QPushButton;
class QWidget;

/// The buttons of a dialog that talk to a controller. During an exchange, which takes no events,
/// none of them can be clicked, and what the user clicks meanwhile is lost.
class ExchangeButtons final : public QObject
{
    Q_OBJECT

public:
    /// All buttons belong to `dialog`, which outlives this object. A button that is disabled now is
    /// not allowed.
    ExchangeButtons(QWidget& dialog, const std::vector<QPushButton*>& buttons);

    /// Disables the buttons. Those that are allowed come back, with the keyboard focus if one of
    /// them had it, when the input that waits behind the exchange was taken.
    void lock();
    /// Says whether a button can be clicked while no exchange runs.
    void allow(const QPushButton& button, bool allowed);

private:
    struct Entry
    {
        QPushButton* button;
        bool isAllowed;
    };

    bool has(const QWidget* widget) const;
    void takeFocus();
    void unlock();

    QWidget& dialog;
    std::vector<Entry> entries;
    /// The button that had the focus, if one had it.
    QPointer<QWidget> focused;
    QTimer behindExchange;
    QTimer settling;
    bool isLocked = false;
};
