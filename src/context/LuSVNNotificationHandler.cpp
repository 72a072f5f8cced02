#include <tessera/LuSVNNotificationHandler.h>

#include "LuSVNObjectDescription.h"

using namespace tessera_private;

LuSVNNotificationHandler::LuSVNNotificationHandler(std::shared_ptr<LuSVNNotificationHandler> nextHandler)
    : nextHandler_(std::move(nextHandler))
{
}

LuSVNNotificationHandler::~LuSVNNotificationHandler() = default;

std::shared_ptr<LuSVNNotificationHandler> LuSVNNotificationHandler::nextHandler() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return nextHandler_;
}

void LuSVNNotificationHandler::setNextHandler(std::shared_ptr<LuSVNNotificationHandler> nextHandler)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    // The old link goes with the argument, after the lock is released: its
    // destruction may take the locks of the links behind it.
    nextHandler_.swap(nextHandler);
}

void LuSVNNotificationHandler::contextNotify(LuSVNContext&, const LuSVNNotification&) {}

std::shared_ptr<LuSVNNotificationHandler> LuSVNNotificationHandler::copy() const
{
    // A plain handler in place of a subclass would drop every notification.
    LuSVNRequireOwnCopy(*this);
    return std::make_shared<LuSVNNotificationHandler>(nextHandler());
}
