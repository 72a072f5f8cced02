#include <tessera/LuSVNLogMessageReceiver.h>

#include <algorithm>

#include "LuSVNAssert.h"

LuSVNLogMessageReceiverDelegate::~LuSVNLogMessageReceiverDelegate() = default;

std::shared_ptr<LuSVNLogMessageReceiver> LuSVNLogMessageReceiver::receiver()
{
    return std::shared_ptr<LuSVNLogMessageReceiver>(new LuSVNLogMessageReceiver());
}

std::shared_ptr<LuSVNLogMessageReceiver> LuSVNLogMessageReceiver::receiverWithDelegate(
    const std::shared_ptr<LuSVNLogMessageReceiverDelegate>& delegate)
{
    auto result = receiver();
    result->delegate_ = delegate;
    return result;
}

void LuSVNLogMessageReceiver::setLogItems(const Items& items)
{
    removeAllLogItems();
    for (const auto& item : items)
        addLogItem(item);
}

void LuSVNLogMessageReceiver::insertObjectInLogItemsAtIndex(const Item& logItem, std::size_t index)
{
    LUSVN_PARAMETER_ASSERT(logItem != nullptr, "logItem != nil");
    LUSVN_PARAMETER_ASSERT(index <= logItems_.size(), "index >= 0 && index <= [logItems count]");
    logItems_.insert(logItems_.begin() + static_cast<std::ptrdiff_t>(index), logItem);
}

void LuSVNLogMessageReceiver::removeObjectFromLogItemsAtIndex(std::size_t index)
{
    LUSVN_PARAMETER_ASSERT(index < logItems_.size(), "index >= 0 && index < [logItems count]");
    logItems_.erase(logItems_.begin() + static_cast<std::ptrdiff_t>(index));
}

void LuSVNLogMessageReceiver::removeLogItem(const Item& logItem)
{
    const auto found = std::find(logItems_.begin(), logItems_.end(), logItem);
    removeObjectFromLogItemsAtIndex(static_cast<std::size_t>(found - logItems_.begin()));
}

void LuSVNLogMessageReceiver::removeAllLogItems()
{
    // From the end: a long log emptied from the front would move every
    // remaining item once per removal.
    while (!logItems_.empty())
        removeObjectFromLogItemsAtIndex(logItems_.size() - 1);
}

bool LuSVNLogMessageReceiver::receiveLogItem(const Item& logItem)
{
    const auto delegate = delegate_.lock();
    if (delegate && !delegate->logItemReceived(logItem))
        return false;
    if (!delegate || delegate->keepsLogItems())
        addLogItem(logItem);
    return true;
}
