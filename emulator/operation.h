#pragma once

#include "emulator/answer.h"
#include "emulator/stagemodel.h"

#include <QByteArray>

#include <cstddef>
#include <variant>

namespace emulator {

class Device;

/// What the first argument of a command may name: no stage at all, 1 or 2, or 3 for both, too.
enum class StageRule { None, One, OneOrBoth };

/// Whether an argument behind the stage names an axis.
enum class AxisRule { None, XOrY };

/// Place and range of the 16-bit value among a command's arguments.
struct ValueRule
{
    static constexpr int noPlace = -1;

    int place = noPlace;
    int least = 0;
    int greatest = 0;
};

/// The arguments of a command, read by the rules of its operation. Members that these do not ask
/// for keep their defaults.
struct Request
{
    /// True if the command names the stage with this index, 0 or 1.
    bool names(std::size_t stage) const;

    /// As they came.
    QByteArray arguments;
    /// The first stage that is named.
    std::size_t stage = 0;
    bool bothStages = false;
    StageModel::Axis axis = StageModel::X;
    int value = 0;
};

/// One command that controllers know: its form, and what carries it out.
struct Operation
{
    using Handler = Answer (Device::*)(const Request&);
    using Condition = bool (Device::*)() const;

    const char* mnemonic;
    /// Number of bytes between the mnemonic and the terminator.
    int argumentLength;
    /// Number of bytes of the usual reply, framing included.
    int replyLength;
    Handler handler;
    StageRule stages = StageRule::None;
    AxisRule axis = AxisRule::None;
    ValueRule value = {};
    /// Null if all controllers support it.
    Condition supported = nullptr;
};

/// Reads the arguments of a command, of which there are `argumentLength` bytes. Of several errors
/// the first in this order is returned: stage, axis, value.
std::variant<Request, RefusalCode> readRequest(const Operation& operation,
                                               const QByteArray& arguments);

} // namespace emulator
