// A notification handler that passes on only what its predicate accepts.
//
//   auto conflicts = LuSVNNotificationFilter::filterWithPredicate(
//       [](const LuSVNNotification& n) { return n.action() == LuSVNNotifyActionTreeConflict; });
//   conflicts->setNextHandler(dialogHandler);
#pragma once

#include <functional>
#include <memory>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNNotificationHandler.h>

class TESSERA_EXPORT LuSVNNotificationFilter : public LuSVNNotificationHandler {
public:
    /// Any callable that answers true for the notifications to pass.
    using Predicate = std::function<bool(const LuSVNNotification&)>;

    using LuSVNNotificationHandler::LuSVNNotificationHandler;

    /// A filter without predicate: it passes everything.
    static std::shared_ptr<LuSVNNotificationFilter> filter();
    /// Raises "Invalid parameter not satisfying: predicate != nil" for an
    /// empty predicate.
    static std::shared_ptr<LuSVNNotificationFilter> filterWithPredicate(Predicate predicate);

    /// Empty when there is none.
    Predicate predicate() const;
    void setPredicate(Predicate predicate);

    /// Passes context and notification to the next handler, unless a
    /// predicate is set and refuses the notification. The predicate and the
    /// next handler run under the filter's lock.
    void contextNotify(LuSVNContext& context, const LuSVNNotification& notification) override;

    /// A new filter with the same predicate and the same next handler.
    std::shared_ptr<LuSVNNotificationHandler> copy() const override;

private:
    Predicate predicate_;
};
