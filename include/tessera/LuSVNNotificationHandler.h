// The handlers that receive a context's notifications, linked in a chain.
//
//   class Printer : public LuSVNNotificationHandler {
//   public:
//       void contextNotify(LuSVNContext&, const LuSVNNotification& notification) override
//       {
//           std::cout << LuSVNStringFromNotificationAction(notification.action()) << "\n";
//       }
//   };
//   context->setNotificationHandler(LuSVNNotificationFilter::filterWithPredicate(
//       [](const LuSVNNotification& n) { return n.nodeKind() == 1; }));      // files only
//   context->notificationHandler()->setNextHandler(std::make_shared<Printer>());
//
// The context calls the first handler of its chain; what a handler passes on
// is its own affair (the base class passes nothing on, a filter passes what
// its predicate accepts). Notifications arrive on the thread that runs the
// operation. Each handler guards its link with its own lock, so a chain may
// be edited from another thread while notifications run.
#pragma once

#include <memory>
#include <mutex>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNNotification.h>

class LuSVNContext;

class TESSERA_EXPORT LuSVNNotificationHandler : public std::enable_shared_from_this<LuSVNNotificationHandler> {
public:
    LuSVNNotificationHandler() = default;
    explicit LuSVNNotificationHandler(std::shared_ptr<LuSVNNotificationHandler> nextHandler);
    virtual ~LuSVNNotificationHandler();

    LuSVNNotificationHandler(const LuSVNNotificationHandler&) = delete;
    LuSVNNotificationHandler& operator=(const LuSVNNotificationHandler&) = delete;

    /// The next link, owned; null at the end of the chain.
    std::shared_ptr<LuSVNNotificationHandler> nextHandler() const;
    void setNextHandler(std::shared_ptr<LuSVNNotificationHandler> nextHandler);

    /// The first link of the chain from this handler on, this one included,
    /// that is a T (or derives from it); null when none is.
    template <class T>
    std::shared_ptr<T> handlerOfClass()
    {
        std::lock_guard<std::recursive_mutex> guard(lock_);
        if (auto handler = std::dynamic_pointer_cast<T>(shared_from_this()))
            return handler;
        return nextHandler_ ? nextHandler_->template handlerOfClass<T>() : nullptr;
    }

    /// Receives one notification of the context's operation. The base class
    /// does nothing with it. An exception stops the operation at its next
    /// cancellation point; the operation then raises it.
    virtual void contextNotify(LuSVNContext& context, const LuSVNNotification& notification);

    /// A new handler linking to the same next handler (the rest of the chain
    /// is shared, not copied). Subclasses override it to copy themselves; one
    /// that does not cannot be copied and raises
    /// LuSVNInvalidArgumentException "<class> does not override copy()".
    virtual std::shared_ptr<LuSVNNotificationHandler> copy() const;

protected:
    mutable std::recursive_mutex lock_;

private:
    std::shared_ptr<LuSVNNotificationHandler> nextHandler_;
};
