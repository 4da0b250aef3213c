// Axes that are clicked: which dialog opens, and when the pointer is a hand.

#include "axisbench.h"

#include <QMenu>
#include <QMessageBox>
#include <qwt_plot_canvas.h>

namespace {

constexpr QSize windowSizes[] = {{600, 450}, {900, 700}, {1280, 960}, {1900, 1000}};

void clickOn(QWidget& widget, const QPoint& where, Qt::MouseButton button = Qt::LeftButton)
{
    QWidget* window = widget.window();
    QTest::mouseClick(window->windowHandle(), button, {}, widget.mapTo(window, where));
}

/// The middle of what is seen of a widget, and places near two of its corners.
QVector<QPoint> spotsOn(const QWidget& widget)
{
    const QRect seen = widget.visibleRegion().boundingRect();
    const QPoint intoIt(2, 2);
    return {seen.center(), seen.topLeft() + intoIt, seen.bottomRight() - intoIt};
}

/// Labels, numbers, canvases, and the axes of the pointing plots, as far as they are shown.
QList<QWidget*> widgetsBesideTheAxes(const WindowFixture& fixture)
{
    QList<QWidget*> widgets;
    for (const char* name : {"labelStage1", "labelStage2", "x_axis_label", "y_axis_label",
                             "i_axis_label", "x_axis_label2", "y_axis_label2", "i_axis_label2",
                             "xyLabel1", "xyLabel2", "iLabel1", "label_48", "timeLabel1",
                             "timeLabel2", "xLabel1", "yLabel2", "lcd1x", "lcd1i", "lcd2y"}) {
        auto* widget = fixture.find<QWidget>(name);
        if (widget->isVisible())
            widgets.append(widget);
    }
    for (int stage = 1; stage <= 2; ++stage) {
        for (const char* kind : {"osciPlot", "positionPlot", "intensityPlot"})
            widgets.append(fixture.plot(kind, stage).canvas());
        for (const int side : {QwtPlot::xBottom, QwtPlot::xTop, QwtPlot::yLeft, QwtPlot::yRight})
            widgets.append(fixture.pointingPlot(stage).axisWidget(side));
    }
    return widgets;
}

/// The pointer as the window system moves it: over a window it shows what the window says.
class Pointer final
{
public:
    void moveTo(const QWidget& widget)
    {
        QWindow* next = widget.window()->windowHandle();
        const QPointF place = widget.mapTo(widget.window(), widget.rect().center());
        if (next != over) {
            QEvent leave(QEvent::Leave);
            if (over)
                QCoreApplication::sendEvent(over, &leave);
            QEnterEvent enter(place, place, next->mapToGlobal(place.toPoint()));
            QCoreApplication::sendEvent(next, &enter);
            over = next;
        }
        QTest::mouseMove(next, place.toPoint());
        QCoreApplication::processEvents();
    }
    Qt::CursorShape shape() const { return over->cursor().shape(); }

private:
    QPointer<QWindow> over;
};

} // namespace

Q_DECLARE_METATYPE(Qt::MouseButton)

class TestAxes final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aClickOpensTheDialogOfTheAxis_data();
    void aClickOpensTheDialogOfTheAxis();
    void aClickBesideTheAxesOpensNothing_data();
    void aClickBesideTheAxesOpensNothing();
    void aClickWhereAnAxisIsHiddenOpensNothing_data();
    void aClickWhereAnAxisIsHiddenOpensNothing();
    void otherButtonsOpenNothing_data();
    void otherButtonsOpenNothing();
    void eachAxisShowsItsPresentLimits();
    void anAxisClickedWhileADialogIsOpenTakesItOver();
    void theFirstFieldIsTypedOverAtEachClick_data();
    void theFirstFieldIsTypedOverAtEachClick();
    void otherNumbersOpenNothing();
    void theHandComesAndGoes();
    void theHandEndsUnderWhateverOpens_data();
    void theHandEndsUnderWhateverOpens();

private:
    /// Rows for windows of several sizes, with the frames of one system and without them.
    static void addWindows();
    /// Makes the window of a row.
    bool openWindow();

    std::unique_ptr<AxisBench> bench;
};

void TestAxes::init()
{
    bench = std::make_unique<AxisBench>();
    QVERIFY(bench->open());
}

void TestAxes::cleanup()
{
    QVERIFY(!QApplication::overrideCursor());
    bench.reset();
    QCOMPARE(leftWidgets(), QString());
}

void TestAxes::addWindows()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("systems");
    for (const QSize& size : windowSizes) {
        for (const int systems : {0, 2})
            QTest::addRow("%d x %d, %d systems", size.width(), size.height(), systems)
                << size << systems;
    }
}

bool TestAxes::openWindow()
{
    QFETCH(QSize, size);
    QFETCH(int, systems);
    bench = std::make_unique<AxisBench>(systems);
    if (!bench->open())
        return false;
    for (int number = 0; number < systems; ++number) {
        if (!bench->fixture.registerSystem(number))
            return false;
    }
    MainWindow& window = bench->fixture.window();
    window.resize(size);
    QCoreApplication::processEvents();
    const bool areReadoutsShown = bench->fixture.find<QWidget>("lcd1x")->isVisible();
    return window.size() == size && areReadoutsShown == (systems < 2);
}

void TestAxes::aClickOpensTheDialogOfTheAxis_data()
{
    addWindows();
}

void TestAxes::aClickOpensTheDialogOfTheAxis()
{
    const QString positions = QStringLiteral("-5.00 .. 5.00");
    const QString times = QStringLiteral("000:00:00 .. 000:00:10");
    const QString intensities = QStringLiteral("0.00 .. 8.00");
    const QMap<int, QString> limits{{1, positions}, {2, positions},   {3, times},
                                    {4, times},     {5, intensities}, {6, intensities}};
    QVERIFY(openWindow());
    for (const ClickableAxis& axis : clickableAxes) {
        const QwtScaleWidget& scale = bench->scale(axis);
        const QVector<QPoint> spots = spotsOn(scale);
        for (const QPoint& spot : spots) {
            QVERIFY(user::click(&bench->scale(axis), spot));
            QVERIFY2(bench->shown(), axis.title);
            QCOMPARE(bench->shown()->windowTitle(), QString(axis.title));
            const bool isTime = bench->shown() == bench->times;
            QCOMPARE(isTime ? bench->times->axis() : bench->values->axis(), axis.axisId);
            QCOMPARE(bench->limitsShown(), limits[axis.axisId]);
            QCOMPARE(bench->shown()->windowIcon().pixmap(16).toImage(),
                     QIcon(":/images/Zevlogo1_freigestellt.gif").pixmap(16).toImage());
            bench->shown()->close();
        }
    }
}

void TestAxes::aClickBesideTheAxesOpensNothing_data()
{
    addWindows();
}

void TestAxes::aClickBesideTheAxesOpensNothing()
{
    QVERIFY(openWindow());
    const QList<QWidget*> others = widgetsBesideTheAxes(bench->fixture);
    for (QWidget* other : others) {
        bench->scrollTo(*other);
        const QVector<QPoint> spots = spotsOn(*other);
        for (const QPoint& spot : spots) {
            clickOn(*other, spot);
            QVERIFY2(bench->isNoneShown(), qPrintable(other->objectName()));
        }
    }
}

void TestAxes::aClickWhereAnAxisIsHiddenOpensNothing_data()
{
    addWindows();
}

void TestAxes::aClickWhereAnAxisIsHiddenOpensNothing()
{
    QVERIFY(openWindow());
    for (int stage = 1; stage <= 2; ++stage) {
        GenericPlot& position = bench->fixture.positionPlot(stage);
        bench->scrollTo(position);
        clickOn(position, {position.width() - 1, position.height() / 2});
        clickOn(position, {position.width() / 2, position.height() - 1});
        GenericPlot& intensity = bench->fixture.intensityPlot(stage);
        bench->scrollTo(intensity);
        clickOn(intensity, {intensity.width() - 1, intensity.height() / 2});
        clickOn(intensity, {intensity.width() / 2, 0});
        QVERIFY(bench->isNoneShown());
    }
}

void TestAxes::otherButtonsOpenNothing_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

void TestAxes::otherButtonsOpenNothing()
{
    QFETCH(Qt::MouseButton, button);
    for (const ClickableAxis& axis : clickableAxes) {
        QwtScaleWidget& scale = bench->scale(axis);
        clickOn(scale, scale.rect().center(), button);
        QVERIFY2(bench->isNoneShown(), axis.title);
    }
}

void TestAxes::eachAxisShowsItsPresentLimits()
{
    MainWindow& window = bench->fixture.window();
    window.rescaleAxis(1, -1.25, 2.5, false);
    window.rescaleAxis(2, -4.0, -3.0, false);
    window.rescaleTimeAxis(3, 1, 20, false);
    window.rescaleTimeAxis(4, 3600, 7265, false);
    window.rescaleAxis(5, 0.5, 1.5, false);
    window.rescaleAxis(6, 2.0, 8.0, false);
    const QMap<int, QString> expected{{1, "-1.25 .. 2.50"},          {2, "-4.00 .. -3.00"},
                                      {3, "000:00:01 .. 000:00:20"}, {4, "001:00:00 .. 002:01:05"},
                                      {5, "0.50 .. 1.50"},           {6, "2.00 .. 8.00"}};
    for (const ClickableAxis& axis : clickableAxes) {
        QVERIFY(user::click(&bench->scale(axis)));
        QVERIFY(bench->shown());
        QCOMPARE(bench->limitsShown(), expected[axis.axisId]);
        bench->shown()->close();
    }
}

void TestAxes::anAxisClickedWhileADialogIsOpenTakesItOver()
{
    bench->fixture.window().rescaleAxis(6, 2.0, 7.0, false);
    QVERIFY(bench->clickAxis(1));
    bench->press(Qt::Key_Tab);
    bench->type("3");
    QVERIFY(bench->clickAxis(6));
    QCOMPARE(bench->shown(), bench->values);
    QCOMPARE(bench->values->windowTitle(), QString("Stage 2: Rescale i axis"));
    QCOMPARE(bench->limitsShown(), QString("2.00 .. 7.00"));
}

void TestAxes::theFirstFieldIsTypedOverAtEachClick_data()
{
    QTest::addColumn<int>("axisId");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::newRow("position") << 1 << "doubleSpinBox_UpperBound"
                              << "5.00";
    QTest::newRow("time") << 3 << "lineEdit_LowerTime"
                          << "000:00:00";
    QTest::newRow("intensity") << 5 << "doubleSpinBox_UpperBound"
                               << "8.00";
}

void TestAxes::theFirstFieldIsTypedOverAtEachClick()
{
    QFETCH(int, axisId);
    for (int click = 0; click < 2; ++click) {
        QVERIFY(bench->clickAxis(axisId));
        const QWidget* focused = bench->shown()->focusWidget();
        QTEST(focused->objectName(), "field");
        const auto* edit = qobject_cast<const QLineEdit*>(focused);
        QTEST((edit ? edit : focused->findChild<QLineEdit*>())->selectedText(), "text");
        bench->press(Qt::Key_Tab);
    }
}

void TestAxes::otherNumbersOpenNothing()
{
    MainWindow& window = bench->fixture.window();
    for (const int axisId : {-1, 0, 3, 4, 7})
        window.showRescaleDialog(axisId, 2.0, 1.0);
    for (const int axisId : {-1, 0, 1, 2, 5, 6, 7})
        window.showRescaleTimeAxisDlg(axisId, 1, 2);
    QVERIFY(bench->isNoneShown());
}

void TestAxes::theHandComesAndGoes()
{
    Pointer pointer;
    for (const ClickableAxis& axis : clickableAxes) {
        GenericPlot& plot = bench->fixture.plot(axis.plotKind, axis.stage);
        QwtScaleWidget& scale = bench->scale(axis);
        for (QWidget* outside : {plot.canvas(), bench->fixture.find<QWidget>("labelStage1")}) {
            pointer.moveTo(scale);
            QCOMPARE(pointer.shape(), Qt::PointingHandCursor);
            pointer.moveTo(*outside);
            QCOMPARE(pointer.shape(), Qt::ArrowCursor);
        }
        QVERIFY(!QApplication::overrideCursor());
    }
}

void TestAxes::theHandEndsUnderWhateverOpens_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("the dialog of the axis") << "dialog";
    QTest::newRow("a menu") << "menu";
    QTest::newRow("a box that stops the window") << "box";
}

void TestAxes::theHandEndsUnderWhateverOpens()
{
    QFETCH(QString, kind);
    Pointer pointer;
    QwtScaleWidget& scale = bench->scale(1);
    pointer.moveTo(scale);
    QCOMPARE(pointer.shape(), Qt::PointingHandCursor);

    QMenu* menu = bench->fixture.find<QMenu>("menuFile");
    QMessageBox box(QMessageBox::Information, "Title", "Text", QMessageBox::Ok,
                    &bench->fixture.window());
    QWidget* opened = nullptr;
    if (kind == "dialog") {
        QVERIFY(bench->clickAxis(1));
        opened = bench->shown();
    } else if (kind == "menu") {
        menu->popup(scale.mapToGlobal(scale.rect().center()));
        opened = menu;
    } else {
        box.open();
        opened = &box;
    }
    QVERIFY(QTest::qWaitForWindowExposed(opened));
    opened->move(scale.mapToGlobal(scale.rect().center()) - opened->rect().center());
    pointer.moveTo(*opened);
    QCOMPARE(pointer.shape(), Qt::ArrowCursor);
    QVERIFY(!QApplication::overrideCursor());

    QTest::keyClick(opened->windowHandle(), Qt::Key_Escape);
    QTRY_VERIFY(!opened->isVisible());
    QWidget& canvas = *bench->fixture.positionPlot(1).canvas();
    pointer.moveTo(canvas);
    QCOMPARE(pointer.shape(), Qt::ArrowCursor);
    pointer.moveTo(scale);
    QCOMPARE(pointer.shape(), Qt::PointingHandCursor);
}

QTEST_MAIN(TestAxes)
#include "tst_axes.moc"
