#include "emulator/rule.h"

#include "emulator/command.h"

namespace emulator {

QByteArray Rule::cut(const QByteArray& bytes) const
{
    return shortBytes == wholeReply ? bytes : bytes.left(shortBytes);
}

bool operator==(const Rule& left, const Rule& right)
{
    return left.prefix == right.prefix && left.skip == right.skip && left.times == right.times
           && left.deed == right.deed && left.lateMs == right.lateMs
           && left.shortBytes == right.shortBytes && left.reply == right.reply;
}

RuleDraft on(const QByteArray& prefix)
{
    Q_ASSERT(prefix.size() >= mnemonicLength);
    return RuleDraft(prefix);
}

RuleDraft& RuleDraft::after(int skippedCommands)
{
    rule.skip = skippedCommands;
    return *this;
}

RuleDraft& RuleDraft::times(int count)
{
    rule.times = count;
    return *this;
}

RuleDraft& RuleDraft::late(int milliseconds)
{
    rule.lateMs = milliseconds;
    return *this;
}

RuleDraft& RuleDraft::cutTo(int bytes)
{
    rule.shortBytes = bytes;
    return *this;
}

RuleDraft& RuleDraft::reply(const QByteArray& bytes)
{
    rule.reply = bytes;
    return act(Deed::Reply);
}

RuleDraft& RuleDraft::act(Deed deed)
{
    rule.deed = deed;
    return *this;
}

} // namespace emulator
