#pragma once

#include "service/servicedialog.h"
#include "support/emulatedlink.h"

#include <QByteArrayList>

/// The service dialog on an emulated controller, without the window.
class ServiceBench final
{
public:
    static constexpr int windowRateHz = 100;
    static constexpr int streamRateHz = 300;
    /// Wait of exchanges in which something goes wrong.
    static constexpr int faultyTimeoutMs = 40;

    explicit ServiceBench(const emulator::ControllerOptions& options = {});

    /// Brings the link up and opens the dialog; the wire log begins behind that.
    bool open();
    /// As `open`, on a controller that streams at `streamRateHz`.
    bool openStreaming();
    /// Shows the dialog for the link, as the window does.
    bool show();

    /// A control of the dialog. The test ends here if there is none.
    template <typename Widget>
    Widget& find(const QString& name) const;

    /// Clicks a control.
    bool press(const QString& control) const;
    /// Clicks a button whose test takes place at once, and waits until the dialog is ready again.
    /// Wire log and results begin anew before.
    bool click(const QString& button);
    /// As `click`, with a controller that follows the rules and waits that these do not make long.
    /// All of them have to act.
    bool clickUnder(const QList<emulator::Rule>& rules, const QString& button);
    bool isReady() const;

    /// The box with the results, as one reads it.
    QString results() const;
    QString labelText(const QString& name) const;
    QByteArrayList commands() const { return link.controller.commands(); }
    /// Whether a stream runs at both ends at `streamRateHz`.
    bool streams() const;
    /// Whether no stream runs at either end.
    bool isQuiet() const;

    EmulatedLink link;
    ServiceDialog dialog;
};

/// What starts a stream at this rate.
QByteArray streamStart(int rateHz);

template <typename Widget>
Widget& ServiceBench::find(const QString& name) const
{
    auto* child = dialog.findChild<Widget*>(name);
    if (!child)
        qFatal("There is no %s", qPrintable(name));
    return *child;
}
