#pragma once

#include "model/stage.h"
#include "params/systemstate.h"

#include <QObject>

#include <array>
#include <functional>
#include <optional>
#include <vector>

class Connection;
class ExchangeButtons;
class QLabel;
class QPushButton;
enum class StreamStart;

/// The controls of the parameter dialog that concern a common detector: they lead a stage of the
/// system on display away from it, and bring the beams of the other system of the group onto those
/// of the system on display. Exchanges stop the streams, block, and start them again.
class GroupControls final : public QObject
{
    Q_OBJECT

public:
    struct Widgets
    {
        QLabel& partner;
        QPushButton& align;
        QPushButton& lockPartner;
        /// By stage.
        std::array<QPushButton*, 2> lockStage;
    };

    /// The systems in the order in which they were registered.
    using Systems = std::vector<Connection*>;

    GroupControls(const Widgets& shown, ExchangeButtons& buttons, const ParamsSources& sources);

    /// For a system that is shown now.
    void reset();
    /// Leads a stage of a system away from the common detector.
    void lockStage(Connection& connection, Stage stage);
    /// Sends the same command for both stages of the system at `current`. The partner is the one
    /// whose stream pauses and whose state is noted: kept as it is.
    void lockPartner(const Systems& systems, std::size_t current);
    void applyPositions(const Systems& systems, std::size_t current);

signals:
    void failed(const QString& message);
    /// A stream could not be started again.
    void streamFailed();

private:
    /// The other system of the group. Null, and told, if there is none.
    Connection* findPartner(const Systems& systems, std::size_t current);
    void onQuietLink(Connection& connection, const std::function<void()>& work);
    void tellIfInDoubt(StreamStart start);
    /// `isOff` if the controller led the stage away from the common detector.
    void noteLocked(const Connection& connection, Stage stage, bool isOff, QPushButton& button);

    Widgets widgets;
    ExchangeButtons& buttons;
    const ParamsSources& sources;
};
