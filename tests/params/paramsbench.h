#pragma once

#include "app/switches.h"
#include "model/connectionsettings.h"
#include "params/paramsdialog.h"
#include "support/emulatedlink.h"

#include <QMessageBox>
#include <QVector>

/// Offers the detectors' sensitivity in dialogs that are opened while it lives.
class SensitivityOffered final
{
public:
    SensitivityOffered() { switches::sensitivityTuning = true; }
    ~SensitivityOffered() { switches::sensitivityTuning = false; }
    SensitivityOffered(const SensitivityOffered&) = delete;
    SensitivityOffered& operator=(const SensitivityOffered&) = delete;
};

/// A kind of controller, and how it streams.
struct ControllerKind
{
    QString name;
    emulator::ControllerOptions options;
    /// Whether its packets come by triggers.
    bool byTriggers = false;

    /// What starts its stream.
    QByteArray start(int rateHz) const;
    /// A record that knows whether its packets come by triggers.
    ConnectionSettings record(int type1 = 0, int type2 = 0) const;
};

Q_DECLARE_METATYPE(ControllerKind)

/// All that differ in what is said to them.
const QVector<ControllerKind>& controllerKinds();
/// Column "kind", and a row for each.
void addControllerKinds();

/// The parameter dialog on an emulated controller, without the window.
class ParamsBench final
{
public:
    static constexpr int toolBarRateHz = 100;

    explicit ParamsBench(const emulator::ControllerOptions& options = {},
                         const ConnectionSettings& record = {});

    /// Brings the link up, adds the system and opens the dialog; the wire log begins behind that.
    bool open();
    /// Brings the link up and starts a stream, by triggers if the record says so. The wire log
    /// begins behind that.
    bool startStream(int rateHz);
    /// As `open`, behind `startStream`.
    bool openStreaming(int rateHz);
    /// Whether a stream runs at both ends, at this rate unless it runs by triggers.
    bool streamsAgain(int rateHz) const;

    /// A control of the dialog. The test ends here if there is none.
    template <typename Widget>
    Widget& find(const QString& name) const;

    bool click(const QString& name) const;
    /// Clicks a button and waits until it can be clicked again.
    bool clickAndWait(const QString& button) const;
    /// Clicks a button that may stay disabled, and waits until the exchange that it began is over.
    bool clickAndWaitForEnd(const QString& button) const;
    /// Types a number into a field and ends with Tab.
    bool type(const QString& field, const QString& text) const;
    /// Goes to a type by the arrow keys, over those between.
    bool choose(const QString& comboBox, int index) const;

    /// What the box that is shown says of the failure; null if there is none.
    QString failure() const;

    QByteArrayList commands() const { return link.controller.commands(); }

    EmulatedLink link;
    SystemState state;
    ParamsDialog dialog;
    DetectorPair& detectors;
    int streamErrors = 0;
};

/// A record with these types of detectors.
ConnectionSettings recordWithTypes(int type1, int type2);

template <typename Widget>
Widget& ParamsBench::find(const QString& name) const
{
    auto* child = dialog.findChild<Widget*>(name);
    if (!child)
        qFatal("There is no %s", qPrintable(name));
    return *child;
}
