#pragma once

#include "app/switches.h"
#include "model/connectionsettings.h"
#include "params/paramsdialog.h"
#include "support/emulatedlink.h"

#include <QMessageBox>

/// Offers the detectors' sensitivity in dialogs that are opened while it lives.
class SensitivityOffered final
{
public:
    SensitivityOffered() { switches::sensitivityTuning = true; }
    ~SensitivityOffered() { switches::sensitivityTuning = false; }
    SensitivityOffered(const SensitivityOffered&) = delete;
    SensitivityOffered& operator=(const SensitivityOffered&) = delete;
};

/// The parameter dialog on an emulated controller, without the window.
class ParamsBench final
{
public:
    static constexpr int toolBarRateHz = 100;

    explicit ParamsBench(const emulator::ControllerOptions& options = {},
                         const ConnectionSettings& record = {});

    /// Brings the link up, adds the system and opens the dialog; the wire log begins behind that.
    bool open();
    /// As `open`, with a stream that runs.
    bool openStreaming(int rateHz);

    /// A control of the dialog. The test ends here if there is none.
    template <typename Widget>
    Widget& find(const QString& name) const;

    bool click(const QString& name) const;
    /// Clicks a button and waits until it can be clicked again.
    bool clickAndWait(const QString& button) const;
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
