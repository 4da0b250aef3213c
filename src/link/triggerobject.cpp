#include "link/triggerobject.h"

#include "link/connection.h"

TriggerObject::TriggerObject(Connection& owner)
    : connection(owner)
{}

void TriggerObject::sendMessage(QByteArray message, int answerLength)
{
    connection.sendMessage(message, answerLength);
}
