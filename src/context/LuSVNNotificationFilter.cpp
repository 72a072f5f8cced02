#include <tessera/LuSVNNotificationFilter.h>

#include "LuSVNAssert.h"
#include "LuSVNObjectDescription.h"

using namespace tessera_private;

std::shared_ptr<LuSVNNotificationFilter> LuSVNNotificationFilter::filter()
{
    return std::make_shared<LuSVNNotificationFilter>();
}

std::shared_ptr<LuSVNNotificationFilter> LuSVNNotificationFilter::filterWithPredicate(Predicate predicate)
{
    LUSVN_PARAMETER_ASSERT(predicate != nullptr, "predicate != nil");
    auto filter = std::make_shared<LuSVNNotificationFilter>();
    filter->predicate_ = std::move(predicate);
    return filter;
}

LuSVNNotificationFilter::Predicate LuSVNNotificationFilter::predicate() const
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    return predicate_;
}

void LuSVNNotificationFilter::setPredicate(Predicate predicate)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    predicate_.swap(predicate);
}

void LuSVNNotificationFilter::contextNotify(LuSVNContext& context, const LuSVNNotification& notification)
{
    std::lock_guard<std::recursive_mutex> guard(lock_);
    if (predicate_ && !predicate_(notification))
        return;
    if (auto next = nextHandler())
        next->contextNotify(context, notification);
}

std::shared_ptr<LuSVNNotificationHandler> LuSVNNotificationFilter::copy() const
{
    LuSVNRequireOwnCopy(*this);
    std::lock_guard<std::recursive_mutex> guard(lock_);
    auto filter = std::make_shared<LuSVNNotificationFilter>(nextHandler());
    filter->predicate_ = predicate_;
    return filter;
}
