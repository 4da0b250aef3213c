#pragma once

#include <QLabel>

/// Says on the screen which system is being connected while the setup file is loaded, which is
/// before the main window shows.
class ConnectingNotice final : public QLabel
{
    Q_OBJECT

public:
    ConnectingNotice();

public slots:
    /// Shows, or changes, the text and paints it at once: the exchange that follows blocks.
    void showSystem(const QString& label, const QString& address);
};
