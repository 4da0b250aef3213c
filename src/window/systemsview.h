#pragma once

#include "window/stageview.h"

#include <QObject>

class LiveSystems;
class MonitorToolBar;
class Statistics;

/// Keeps the stages consistent with the list of systems: curves and their colours, and what is
/// there only while a single system is on the plots. Displayed systems and common detectors count
/// alike.
class SystemsView final : public QObject
{
    Q_OBJECT

public:
    SystemsView(LiveSystems& systems, Stages& stages, const MonitorToolBar& toolBar,
                Statistics& statistics, QWidget& window);

    /// Enables or disables what acts on the displayed systems.
    void enableControls(bool on);

signals:
    /// Whether any system is on the plots now.
    void controlsEnabled(bool on);

private:
    void onAdded(int index);
    void onClosed(int index);
    void onShown();
    void onHidden(int index);
    void onCommonShown(int index);
    void onCommonHidden(int place);
    void onColored(int index);
    void setCurveColors(int index);
    void showWhatIsLeft();
    void showSingleSystem();
    void hideSingleSystem();
    void colorAxisNames();
    void blackenAxisNames();

    LiveSystems& systems;
    Stages& stages;
    const MonitorToolBar& toolBar;
    Statistics& statistics;
    QWidget& window;
};
