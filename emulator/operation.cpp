#include "emulator/operation.h"

namespace emulator {

namespace {

constexpr int bothStagesByte = 3;

/// Takes the stage that the first argument names; false if this is not allowed.
bool readStage(StageRule rule, int stageByte, Request& request)
{
    if (rule == StageRule::None)
        return true;
    request.bothStages = stageByte == bothStagesByte;
    if (!request.bothStages)
        request.stage = static_cast<std::size_t>(stageByte - 1);
    return stageByte == 1 || stageByte == 2 || (rule == StageRule::OneOrBoth && request.bothStages);
}

bool readAxis(AxisRule rule, const QByteArray& arguments, Request& request)
{
    if (rule == AxisRule::None)
        return true;
    const char axisByte = arguments[1];
    request.axis = axisByte == 'y' ? StageModel::Y : StageModel::X;
    return axisByte == 'x' || axisByte == 'y';
}

bool readValue(const ValueRule& rule, const QByteArray& arguments, Request& request)
{
    if (rule.place == ValueRule::noPlace)
        return true;
    request.value = signedWordAt(arguments, rule.place);
    return request.value >= rule.least && request.value <= rule.greatest;
}

} // namespace

bool Request::names(std::size_t index) const
{
    return bothStages || index == stage;
}

std::variant<Request, RefusalCode> readRequest(const Operation& operation,
                                               const QByteArray& arguments)
{
    Request request;
    request.arguments = arguments;
    if (!readStage(operation.stages, arguments.isEmpty() ? 0 : byteAt(arguments, 0), request))
        return RefusalCode::NoSuchStage;
    if (!readAxis(operation.axis, arguments, request))
        return RefusalCode::NoSuchAxis;
    if (!readValue(operation.value, arguments, request))
        return RefusalCode::ValueOutOfRange;
    return request;
}

} // namespace emulator
