#include "benchwindow.h"

#include "app/switches.h"
#include "plots/counter.h"
#include "plots/genericplot.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSpinBox>

namespace {

constexpr QSize windowSize(1280, 960);
constexpr int slowestUpdateRateHz = 1;

} // namespace

BenchWindow::BenchWindow()
{
    switches::configDir = QDir(home.path());
    switches::autoSerialSearch = false;
    monitor = std::make_unique<MainWindow>();
    monitor->findChild<Counter*>("updateRateCounter")->spinBox->setValue(slowestUpdateRateHz);
    monitor->resize(windowSize);
    monitor->show();
    monitor->resizeGraphs();
    QCoreApplication::processEvents();
    for (GenericPlot* plot : monitor->findChildren<GenericPlot*>())
        plot->canvas()->installEventFilter(this);
}

GenericPlot& BenchWindow::plot(const char* name) const
{
    return *monitor->findChild<GenericPlot*>(name);
}

void BenchWindow::tick()
{
    QMetaObject::invokeMethod(monitor.get(), "updateData", Qt::DirectConnection);
}

void BenchWindow::paint()
{
    QCoreApplication::processEvents();
}

bool BenchWindow::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Paint)
        ++paintCount;
    return QObject::eventFilter(object, event);
}
