#include "paramsbench.h"

#include "support/userinput.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QWindow>
#include <QtTest>

ParamsBench::ParamsBench(const emulator::ControllerOptions& options,
                         const ConnectionSettings& record)
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

bool ParamsBench::openStreaming(int rateHz)
{
    if (!link.connectAndIdentify() || !link.startStream(rateHz))
        return false;
    return open() && link.client.isStreaming();
}

bool ParamsBench::click(const QString& name) const
{
    return user::click(&find<QWidget>(name));
}

bool ParamsBench::clickAndWait(const QString& button) const
{
    return click(button) && QTest::qWaitFor([&] { return find<QPushButton>(button).isEnabled(); });
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
