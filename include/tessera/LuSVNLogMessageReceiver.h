// Collects the items of a log query in arrival order and hands each to a
// delegate as it arrives. The delegate can cancel the query, and one that
// only prints can leave the items uncollected, so that a long history is
// never held whole:
//
//   class Printer : public LuSVNLogMessageReceiverDelegate {
//       bool logItemReceived(const std::shared_ptr<LuSVNLogItem>& item) override
//       { std::cout << item->stringValue(); return true; }
//       bool keepsLogItems() const override { return false; }
//   };
//   LuSVNNode::readLogForNodeAtPath(path, std::make_shared<Printer>(), options, context);
//
// A delegate's exception stops the query and reaches the caller of the query.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNLogItem.h>

/// Hears of each log item as it arrives.
class TESSERA_EXPORT LuSVNLogMessageReceiverDelegate {
public:
    virtual ~LuSVNLogMessageReceiverDelegate();
    /// Called once per item as the backend reports it: true to go on, false
    /// to cancel the query (which then raises the cancellation as
    /// LuSVNException, and the item is not collected).
    virtual bool logItemReceived(const std::shared_ptr<LuSVNLogItem>& item) = 0;
    /// Whether the receiver collects the items the delegate let through;
    /// false for a delegate that consumes them itself.
    virtual bool keepsLogItems() const { return true; }
};

/// Collects the items of a log query.
class TESSERA_EXPORT LuSVNLogMessageReceiver {
public:
    /// One log item.
    using Item = std::shared_ptr<LuSVNLogItem>;
    /// Log items in arrival order.
    using Items = std::vector<Item>;

    /// A receiver without delegate.
    static std::shared_ptr<LuSVNLogMessageReceiver> receiver();
    /// A receiver with a delegate, which it does not keep alive.
    static std::shared_ptr<LuSVNLogMessageReceiver> receiverWithDelegate(
        const std::shared_ptr<LuSVNLogMessageReceiverDelegate>& delegate);

    /// Null when none was given or it is gone.
    std::shared_ptr<LuSVNLogMessageReceiverDelegate> delegate() const { return delegate_.lock(); }
    /// See delegate().
    void setDelegate(const std::shared_ptr<LuSVNLogMessageReceiverDelegate>& delegate) { delegate_ = delegate; }

    /// The collected items in arrival order.
    const Items& logItems() const { return logItems_; }
    /// Replaces the items with a copy of the list.
    void setLogItems(const Items& items);
    /// Raises "Invalid parameter not satisfying: logItem != nil" or "index >=
    /// 0 && index <= [logItems count]".
    void insertObjectInLogItemsAtIndex(const Item& logItem, std::size_t index);
    /// Raises "Invalid parameter not satisfying: index >= 0 && index <
    /// [logItems count]".
    void removeObjectFromLogItemsAtIndex(std::size_t index);
    /// Appends the item.
    void addLogItem(const Item& logItem) { insertObjectInLogItemsAtIndex(logItem, logItems_.size()); }
    /// Removes this very item; one not in the list fails the index assertion.
    void removeLogItem(const Item& logItem);
    /// Removes every item.
    void removeAllLogItems();

    /// What the backend's log callback does with a new item: asks the
    /// delegate, and collects the item unless the delegate cancelled or
    /// consumes the items itself. Answers false when the delegate cancelled.
    bool receiveLogItem(const Item& logItem);

private:
    LuSVNLogMessageReceiver() = default;

    std::weak_ptr<LuSVNLogMessageReceiverDelegate> delegate_;
    Items logItems_;
};
