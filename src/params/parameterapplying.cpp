#include "params/parameterapplying.h"

#include "link/ask.h"
#include "link/connection.h"
#include "link/replyforms.h"
#include "params/paramstext.h"

namespace {

/// What selects the external input.
constexpr int externalMv = 0;
constexpr double millivoltsPerVolt = 1000.0;

using What = ApplyFailure::What;

/// Sends one value after the other and keeps the failures.
class Application final
{
public:
    Application(Connection& told, const std::array<StageWishes, 2>& wanted)
        : connection(told)
        , wishes(wanted)
    {}

    std::vector<ApplyFailure> run();

private:
    const StageWishes& of(Stage stage) const { return wishes[indexOf(stage)]; }
    bool isTaken(ArgumentCommand setter, const QByteArray& argument);
    bool isAnswered(ArgumentCommand setter, const QByteArray& argument);
    void fail(What what, Stage stage, BeamAxis axis = BeamAxis::X)
    {
        failures.push_back({what, stage, axis});
    }

    void setPFactors();
    bool setPFactor(Stage stage, const std::optional<int>& wishMv);
    void setSensitivity(Stage stage);
    void setAdjustIn(Stage stage);

    Connection& connection;
    const std::array<StageWishes, 2>& wishes;
    std::vector<ApplyFailure> failures;
};

bool Application::isTaken(ArgumentCommand setter, const QByteArray& argument)
{
    return command::isAccepted(ask(connection, setter, argument));
}

/// A reply that was too short is one, too.
bool Application::isAnswered(ArgumentCommand setter, const QByteArray& argument)
{
    (connection.*setter)(argument);
    QByteArray ignored;
    return connection.fetchReply(ignored);
}

QByteArray valueArgument(Stage stage, int valueMv)
{
    return command::stageValueArgument(stage, static_cast<qint16>(valueMv));
}

/// Of the external input only silence is a failure: a reply of any kind will do.
bool Application::setPFactor(Stage stage, const std::optional<int>& wishMv)
{
    const ArgumentCommand setter = &Connection::setPFactor;
    const bool taken = wishMv ? isTaken(setter, valueArgument(stage, *wishMv))
                              : isAnswered(setter, valueArgument(stage, externalMv));
    if (!taken)
        fail(wishMv ? What::PFactor : What::ExternalPFactor, stage);
    return taken;
}

void Application::setPFactors()
{
    const bool taken = setPFactor(Stage::One, of(Stage::One).pFactorMv);
    setPFactor(Stage::Two, taken ? of(Stage::Two).pFactorMv : std::nullopt);
}

/// Sent to every firmware, known or not, and also where the form does not offer it: kept, since a
/// controller that does not know it refuses. Nobody looks at the reply for the external input:
/// without a cable there is no other source.
void Application::setSensitivity(Stage stage)
{
    const std::optional<int>& wishMv = of(stage).sensitivityMv;
    const bool taken = isTaken(&Connection::setDetectorSensitivity,
                               valueArgument(stage, wishMv.value_or(externalMv)));
    if (wishMv && !taken)
        fail(What::Sensitivity, stage);
}

/// An axis that is not taken leaves the whole stage external, so the other one is set external.
void Application::setAdjustIn(Stage stage)
{
    constexpr AxisValues external{externalMv, externalMv};
    AxisValues wanted = of(stage).adjustIn.value_or(external);
    for (const BeamAxis axis : {BeamAxis::X, BeamAxis::Y}) {
        const int valueMv = axis == BeamAxis::X ? wanted.xMv : wanted.yMv;
        const QByteArray argument =
            command::stageAxisValueArgument(stage, axis, static_cast<qint16>(valueMv));
        if (isTaken(&Connection::setAdjustIn, argument))
            continue;
        fail(What::AdjustIn, stage, axis);
        wanted = external;
    }
}

std::vector<ApplyFailure> Application::run()
{
    setPFactors();
    for (const Stage stage : bothStages)
        setSensitivity(stage);
    for (const Stage stage : bothStages)
        setAdjustIn(stage);
    return failures;
}

} // namespace

bool operator==(const ApplyFailure& one, const ApplyFailure& other)
{
    return one.what == other.what && one.stage == other.stage && one.axis == other.axis;
}

QString messageOf(const ApplyFailure& failure)
{
    switch (failure.what) {
    case What::PFactor:
        return ParamsText::tr("P-Factor of stage %1 wasn't set!").arg(numberOf(failure.stage));
    case What::ExternalPFactor:
        return ParamsText::tr("P-Factor of stage %1 wasn't set external!")
            .arg(numberOf(failure.stage));
    case What::Sensitivity:
        return ParamsText::tr("Sensitivity cable of detector %1 is not connected!")
            .arg(numberOf(failure.stage));
    case What::AdjustIn:
        break;
    }
    return ParamsText::tr("%1-adjust value of stage %2 has not been accepted ")
        .arg(QLatin1Char(static_cast<char>(failure.axis)))
        .arg(numberOf(failure.stage));
}

qint16 toMillivolts(double volts)
{
    return static_cast<qint16>(volts * millivoltsPerVolt);
}

std::vector<ApplyFailure> applyParameters(Connection& connection,
                                          const std::array<StageWishes, 2>& wishes)
{
    return Application(connection, wishes).run();
}
