#include "emulator/samplesource.h"

#include "emulator/disturbance.h"
#include "emulator/replay.h"

#include <utility>

namespace emulator {

SampleSource::SampleSource(const QVector<PacketValues>& samples, bool scriptRepeats,
                           std::shared_ptr<const Replay> recording)
    : script(samples)
    , repeats(scriptRepeats)
    , replay(std::move(recording))
{}

SampleSource::Kind SampleSource::kind() const
{
    if (!script.isEmpty())
        return Kind::Script;
    return replay ? Kind::Replay : Kind::Beam;
}

void SampleSource::rewind(double rate)
{
    streamRate = rate;
    scriptIndex = 0;
    packets = 0;
    stepsDone = 0;
}

void SampleSource::advance()
{
    ++packets;
    if (scriptIndex < script.size())
        ++scriptIndex;
    if (repeats && scriptIndex == script.size())
        scriptIndex = 0;
}

int SampleSource::beamSteps()
{
    if (streamRate <= 0.0)
        return 0;
    const auto due =
        static_cast<qint64>(static_cast<double>(packets + 1) * beamStepsPerSecond / streamRate);
    const auto steps = static_cast<int>(due - stepsDone);
    stepsDone = due;
    return steps;
}

std::optional<PacketValues> SampleSource::sample() const
{
    if (kind() == Kind::Replay) {
        constexpr double msPerSecond = 1000.0;
        const double elapsed =
            streamRate > 0 ? static_cast<double>(packets) * msPerSecond / streamRate : 0.0;
        return replay->at(static_cast<qint64>(elapsed));
    }
    if (scriptIndex < script.size())
        return script[scriptIndex];
    return std::nullopt;
}

PacketValues SampleSource::lastSample() const
{
    return sample().value_or(script.isEmpty() ? PacketValues() : script.last());
}

} // namespace emulator
