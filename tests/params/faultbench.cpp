#include "faultbench.h"

#include "link/packet.h"
#include "support/logcapture.h"

#include <QDoubleSpinBox>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QtTest>

using emulator::ControllerOptions;
using emulator::on;
using emulator::Rule;

namespace {

const QStringList adjustFields{"AdjustX", "AdjustY", "AdjustX_2", "AdjustY_2"};
const QStringList pFactorFields{"PFactor", "PFactor_2"};
const QStringList sensitivityFields{"sens_1", "sens_2"};
const QStringList positionFields{"SetHoldX", "SetHoldY", "SetHoldX_2", "SetHoldY_2"};
const QStringList allFields = adjustFields + pFactorFields + sensitivityFields + positionFields;
const QStringList flaggedSources{"PFactor source", "PFactor source_2", "Adjust source",
                                 "Adjust source_2"};
const QStringList sensitivitySources{"sensitivity source", "sensitivity source_2"};
const QStringList allSources = flaggedSources + sensitivitySources;

QDoubleSpinBox& field(const ParamsBench& bench, const QString& name)
{
    return bench.find<QDoubleSpinBox>("doubleSpinBox_" + name);
}

QRadioButton& radio(const ParamsBench& bench, const QString& source, bool software)
{
    const bool isSensitivity = sensitivitySources.contains(source);
    const QString choice = !software ? "_extern" : isSensitivity ? "_software" : "_intern";
    return bench.find<QRadioButton>("radioButton_" + QString(source).replace(" source", choice));
}

QString shownSource(const ParamsBench& bench, const QString& source)
{
    const bool software = radio(bench, source, true).isChecked();
    const bool external = radio(bench, source, false).isChecked();
    if (software == external)
        return software ? "both" : "none";
    return software ? "software" : "external";
}

Form shownForm(const ParamsBench& bench)
{
    Form form;
    for (const QString& name : allFields)
        form[name] = field(bench, name).text();
    for (const QString& source : allSources)
        form[source] = shownSource(bench, source);
    return form;
}

/// Without what the platform complains about when a box is shown.
QStringList warningsIn(const LogCapture& log)
{
    return log.lines().filter(QRegularExpression("^warning: (?!This plugin does not support)"));
}

ControllerOptions onFixedPositions(ControllerOptions options)
{
    emulator::PacketValues values{};
    values[0].x = 250;
    values[0].y = -1;
    values[1].x = -4000;
    values[1].y = 1000;
    // The end of a packet is not that of a confirmed stop.
    values[1].actuatorY = 5000;
    options.script = {values};
    options.scriptRepeats = true;
    return options;
}

} // namespace

QVector<Fault> faultsOf(const QByteArray& command)
{
    return {{"refused", on(command).refuse()},
            {"ignored", on(command).ignore()},
            {"cut to 1 byte", on(command).cutTo(1)},
            {"cut to 3 bytes", on(command).cutTo(3)}};
}

const QVector<Question>& questions()
{
    static const QVector<Question> all{
        {"GSF", "GSF", flaggedSources, {}},
        {"S1S", "S1S", positionFields, {}},
        {"GAI\1x", "GAI 1x", {"AdjustX"}, {"0.000"}},
        {"GAI\1y", "GAI 1y", {"AdjustY"}, {"0.000"}},
        {"GAI\2x", "GAI 2x", {"AdjustX_2"}, {"0.000"}},
        {"GAI\2y", "GAI 2y", {"AdjustY_2"}, {"0.000"}},
        {"GPF\1", "GPF 1", {"PFactor"}, {"0.01"}},
        {"GPF\2", "GPF 2", {"PFactor_2"}, {"0.01"}},
        {"GDS\1", "GDS 1", {"sens_1", "sensitivity source"}, {"0.00", "external"}},
        {"GDS\2", "GDS 2", {"sens_2", "sensitivity source_2"}, {"0.00", "external"}},
    };
    return all;
}

QString namesOf(const QVector<Question>& questions)
{
    QStringList names;
    for (const Question& question : questions)
        names.append(question.name);
    return names.join(", ");
}

void addQuestionFaults()
{
    QTest::addColumn<Question>("question");
    QTest::addColumn<Rule>("always");
    QTest::addColumn<Rule>("once");
    for (const Question& question : questions()) {
        for (Fault& fault : faultsOf(question.command)) {
            const Rule always = fault.rule;
            QTest::addRow("%s %s", qPrintable(question.name), fault.name)
                << question << always << Rule(fault.rule.once());
        }
    }
}

FaultBench::FaultBench(const ControllerOptions& options)
    : bench(onFixedPositions(options), recordWithTypes(2, 5))
{}

bool FaultBench::setUpController()
{
    using namespace command;
    const auto isTaken = [this](auto setter, const QByteArray& argument) {
        (bench.link.client.*setter)(argument);
        QByteArray reply;
        return bench.link.client.fetchReply(reply) && reply == QByteArray("\0;", 2);
    };
    const auto adjust = [&](Stage stage, BeamAxis axis, qint16 valueMv) {
        return isTaken(&Connection::setAdjustIn, stageAxisValueArgument(stage, axis, valueMv));
    };
    const auto set = [&](auto setter, Stage stage, qint16 valueMv) {
        return isTaken(setter, stageValueArgument(stage, valueMv));
    };
    if (!bench.link.connectAndIdentify())
        return false;
    bench.link.client.setTimeoutMs(patientTimeoutMs());
    return adjust(Stage::One, BeamAxis::X, -1000) && adjust(Stage::One, BeamAxis::Y, 250)
           && adjust(Stage::Two, BeamAxis::X, 3) && adjust(Stage::Two, BeamAxis::Y, -4999)
           && set(&Connection::setPFactor, Stage::One, 1500)
           && set(&Connection::setPFactor, Stage::Two, 290)
           && (!hasSensitivity()
               || (set(&Connection::setDetectorSensitivity, Stage::One, 700)
                   && set(&Connection::setDetectorSensitivity, Stage::Two, 4000)));
}

bool FaultBench::hasSensitivity() const
{
    return bench.link.client.firmwareVersion() > command::lastFirmwareWithoutSensitivity;
}

/// Firmware without an end mark makes every stop as long as this.
int FaultBench::patientTimeoutMs() const
{
    const bool hasEndMark = packet::hasFlags(bench.link.client.firmwareVersion());
    return hasEndMark ? EmulatedLink::shortTimeoutMs : faultyTimeoutMs;
}

bool FaultBench::isOpen()
{
    const QVector<Question> notAsked = hasSensitivity() ? QVector<Question>() : questions().mid(8);
    return bench.open() && difference(formWithout(notAsked)).isEmpty();
}

bool FaultBench::open()
{
    return setUpController() && isOpen();
}

bool FaultBench::openStreaming()
{
    return setUpController() && bench.link.startStream(rateHz) && isOpen() && streams();
}

void FaultBench::fill(const Form& form) const
{
    for (const QString& name : allFields)
        field(bench, name).setValue(form[name].toDouble());
    for (const QString& source : allSources) {
        QRadioButton& button = radio(bench, source, form[source] == "software");
        if (!button.isChecked())
            button.click();
    }
}

bool FaultBench::click(const QString& button)
{
    bench.link.controller.clearWire();
    const LogCapture log;
    const bool isClicked = bench.clickAndWaitForEnd(button);
    logged = warningsIn(log);
    return isClicked;
}

bool FaultBench::clickUnder(const Rule& rule, const QString& button)
{
    bench.link.controller.setRules({rule});
    bench.link.client.setTimeoutMs(faultyTimeoutMs);
    const bool isClicked = click(button);
    bench.link.client.setTimeoutMs(patientTimeoutMs());
    return isClicked;
}

bool FaultBench::refresh()
{
    fill(formOfUser());
    return difference(formOfUser()).isEmpty() && click("pushButtonRefresh");
}

bool FaultBench::refreshUnder(const Rule& rule)
{
    fill(formOfUser());
    return difference(formOfUser()).isEmpty() && clickUnder(rule, "pushButtonRefresh");
}

Form FaultBench::formOfController()
{
    Form form{{"AdjustX", "-1.000"},   {"AdjustY", "0.250"},     {"AdjustX_2", "0.003"},
              {"AdjustY_2", "-4.999"}, {"PFactor", "1.50"},      {"PFactor_2", "0.29"},
              {"sens_1", "0.70"},      {"sens_2", "4.00"},       {"SetHoldX", "0.250"},
              {"SetHoldY", "-0.001"},  {"SetHoldX_2", "-4.000"}, {"SetHoldY_2", "1.000"}};
    for (const QString& source : allSources)
        form[source] = "software";
    return form;
}

Form FaultBench::formOfUser()
{
    Form form;
    for (const QString& field : adjustFields + positionFields)
        form[field] = "2.500";
    for (const QString& field : pFactorFields + sensitivityFields)
        form[field] = "2.50";
    for (const QString& source : flaggedSources)
        form[source] = "external";
    for (const QString& source : sensitivitySources)
        form[source] = "software";
    return form;
}

Form FaultBench::formWithout(const QVector<Question>& unanswered)
{
    Form form = formOfController();
    for (const Question& question : unanswered) {
        for (int i = 0; i < question.controls.size(); ++i) {
            const QString& control = question.controls[i];
            form[control] = question.unread.isEmpty() ? formOfUser()[control] : question.unread[i];
        }
    }
    return form;
}

QString FaultBench::difference(const Form& expected) const
{
    const Form form = shownForm(bench);
    QStringList differences;
    for (auto control = form.cbegin(); control != form.cend(); ++control) {
        const QString wanted = expected.value(control.key());
        if (control.value() != wanted)
            differences.append(control.key() + " shows " + control.value() + ", not " + wanted);
    }
    return differences.join("; ");
}

QString FaultBench::unread() const
{
    const QString beginning = "warning: Not read from \"" + bench.link.client.address()
                              + "\" (missing values are shown as 0): ";
    if (logged.size() == 1 && logged[0].startsWith(beginning))
        return logged[0].mid(beginning.size()).remove('"');
    return logged.isEmpty() ? QString() : logged.join('\n');
}

bool FaultBench::hasButtons() const
{
    const auto isEnabled = [this](const char* name) {
        return bench.find<QPushButton>(name).isEnabled();
    };
    return isEnabled("pushButtonSave") && isEnabled("pushButtonRefresh")
           && isEnabled("pushButtonApply");
}

bool FaultBench::streams() const
{
    return bench.link.client.isStreaming() && bench.link.client.samplingRate() == rateHz
           && bench.link.controller.isStreaming() && bench.link.controller.streamRate() == rateHz;
}

bool FaultBench::isQuiet() const
{
    return !bench.link.client.isStreaming() && !bench.link.controller.isStreaming();
}
