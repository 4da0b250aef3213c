#include "paramsbench.h"

#include "support/userinput.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QWindow>
#include <QtTest>

using emulator::ControllerOptions;

QByteArray ControllerKind::start(int rateHz) const
{
    if (byTriggers)
        return QByteArray("SPS\0\0;", 6);
    const QByteArray rate = QByteArray(2, '\0').append(char(rateHz >> 8)).append(char(rateHz));
    return (options.vm ? "SGS" : "SLS") + rate + ';';
}

ConnectionSettings ControllerKind::record(int type1, int type2) const
{
    ConnectionSettings record = recordWithTypes(type1, type2);
    record.pulsedLaser = byTriggers;
    return record;
}

const QVector<ControllerKind>& controllerKinds()
{
    static const QVector<ControllerKind> all = [] {
        QVector<ControllerKind> kinds;
        ControllerOptions options;
        for (const int firmware : {10, 11, 30, 31}) {
            options.firmware = firmware;
            kinds.append({"firmware " + QString::number(firmware), options});
        }
        ControllerOptions vm = options;
        vm.vm = true;
        kinds.append({"VM", vm});
        ControllerOptions triggered = options;
        triggered.triggerCapable = true;
        kinds.append({"by triggers", triggered, true});
        return kinds;
    }();
    return all;
}

void addControllerKinds()
{
    QTest::addColumn<ControllerKind>("kind");
    for (const ControllerKind& kind : controllerKinds())
        QTest::newRow(qPrintable(kind.name)) << kind;
}

ParamsBench::ParamsBench(const ControllerOptions& options, const ConnectionSettings& record)
    : link(options)
    , dialog({[this](const Connection&) { return state; },
              [this](const Connection&, Stage stage, bool isOnCommonPath) {
                  state.isOnCommonPath[indexOf(stage)] = isOnCommonPath;
              },
              [] { return toolBarRateHz; }},
             nullptr)
    , detectors(dialog.addDetectors(link.client, record))
{
    state.label = QStringLiteral("Laser 1");
    QObject::connect(&dialog, &ParamsDialog::errorStream, &link.context,
                     [this] { ++streamErrors; });
}

bool ParamsBench::open()
{
    if (!link.client.isConnected() && !link.connectAndIdentify())
        return false;
    dialog.openFor(&link.client);
    QApplication::setActiveWindow(&dialog);
    const bool isShown = QTest::qWaitForWindowExposed(&dialog);
    link.controller.clearWire();
    return isShown
           && QTest::qWaitFor([&] { return find<QPushButton>("pushButtonApply").isEnabled(); });
}

bool ParamsBench::startStream(int rateHz)
{
    if (!link.connectAndIdentify())
        return false;
    link.client.setTriggerMode(detectors.pulsedLaser != 0);
    const bool runs = link.startStream(rateHz);
    link.controller.clearWire();
    return runs;
}

bool ParamsBench::openStreaming(int rateHz)
{
    return startStream(rateHz) && open() && link.client.isStreaming();
}

bool ParamsBench::streamsAgain(int rateHz) const
{
    if (!link.client.isStreaming() || !link.controller.isStreaming())
        return false;
    return link.client.triggerMode()
           || (link.client.samplingRate() == rateHz && link.controller.streamRate() == rateHz);
}

bool ParamsBench::click(const QString& name) const
{
    return user::click(&find<QWidget>(name));
}

bool ParamsBench::clickAndWait(const QString& button) const
{
    return click(button) && QTest::qWaitFor([&] { return find<QPushButton>(button).isEnabled(); });
}

bool ParamsBench::clickAndWaitForEnd(const QString& button) const
{
    return click(button)
           && QTest::qWaitFor([&] { return find<QPushButton>("pushButtonRefresh").isEnabled(); });
}

bool ParamsBench::type(const QString& field, const QString& text) const
{
    auto& box = find<QDoubleSpinBox>(field);
    if (!user::click(&box))
        return false;
    box.selectAll();
    QWindow* window = dialog.windowHandle();
    for (const QChar character : text)
        QTest::keyClick(window, character.toLatin1());
    QTest::keyClick(window, Qt::Key_Tab);
    return !box.hasFocus();
}

bool ParamsBench::choose(const QString& comboBox, int index) const
{
    auto& box = find<QComboBox>(comboBox);
    if (!box.isVisible() || !box.isEnabled())
        return false;
    box.setFocus();
    QWindow* window = dialog.windowHandle();
    const int steps = index - box.currentIndex();
    for (int i = 0; i < qAbs(steps); ++i)
        QTest::keyClick(window, steps > 0 ? Qt::Key_Down : Qt::Key_Up);
    return box.currentIndex() == index;
}

QString ParamsBench::failure() const
{
    const auto* box = dialog.findChild<QMessageBox*>(QStringLiteral("errorBox"));
    return box && box->isVisible() ? box->informativeText() : QString();
}

ConnectionSettings recordWithTypes(int type1, int type2)
{
    ConnectionSettings record;
    record.model = {type1, type2};
    return record;
}
