#pragma once

#include <QString>
#include <QWidget>

class ConnectionWidget;
class SettingsDialog;
class WindowFixture;

/// A child of a dialog that the form gave this name.
template <typename T>
T& in(const QWidget& dialog, const char* name)
{
    return *dialog.findChild<T*>(QLatin1String(name));
}

SettingsDialog& settingsDialog(const WindowFixture& fixture);

/// Lets the connection dialog make connections with short waits.
void makeShortConnections(const WindowFixture& fixture);

/// Fills the TCP tab by keys and presses Connect.
bool connectByDialog(const WindowFixture& fixture, int number, const QString& label);

/// The line of a system in the list of the TCP tab, and its buttons "Button" and "deleteButton".
ConnectionWidget& line(const WindowFixture& fixture, int number);
bool clickInLine(const WindowFixture& fixture, int number, const char* name);
QString lineButtonText(const WindowFixture& fixture, int number);

/// What the TCP tab says.
QString infoText(const WindowFixture& fixture);
