#include <tessera/LuSVNContextPool.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include "LuSVNAssert.h"

LuSVNContextFactory::~LuSVNContextFactory() = default;

LuSVNContextPoolDelegate::~LuSVNContextPoolDelegate() = default;
void LuSVNContextPoolDelegate::poolDidCreateContext(LuSVNContextPool&, LuSVNContext&) {}
void LuSVNContextPoolDelegate::poolDidReserveContext(LuSVNContextPool&, LuSVNContext&) {}
void LuSVNContextPoolDelegate::poolDidReturnContext(LuSVNContextPool&, LuSVNContext&) {}
void LuSVNContextPoolDelegate::poolDidDiscardContext(LuSVNContextPool&, LuSVNContext&) {}

struct LuSVNContextPool::PooledContext {
    std::shared_ptr<LuSVNContext> context;
    std::shared_ptr<LuSVNContextPool> contextPool;  // a handle keeps its pool alive
    bool returnToPool = true;                       // guarded by the pool's lock
};

// The deleter of a handle. The control block runs it once, on the thread
// that drops the last copy; it lets go of the context and the pool there,
// since weak references to the handle keep the deleter itself alive longer.
struct LuSVNContextPool::Release {
    std::shared_ptr<PooledContext> pooled;

    void operator()(LuSVNContext*)
    {
        const std::shared_ptr<PooledContext> released = std::move(pooled);
        released->contextPool->releaseContext(*released);
    }
};

std::shared_ptr<LuSVNContextPool> LuSVNContextPool::poolWithFactory(std::shared_ptr<LuSVNContextFactory> factory)
{
    LUSVN_PARAMETER_ASSERT(factory != nullptr, "theFactory != nil");
    return std::shared_ptr<LuSVNContextPool>(new LuSVNContextPool(std::move(factory)));
}

LuSVNContextPool::LuSVNContextPool(std::shared_ptr<LuSVNContextFactory> factory) : factory_(std::move(factory)) {}

LuSVNContextPool::~LuSVNContextPool() = default;

std::shared_ptr<LuSVNContextPoolDelegate> LuSVNContextPool::delegate() const
{
    const std::lock_guard guard(lock_);
    return delegate_.lock();
}

void LuSVNContextPool::setDelegate(std::weak_ptr<LuSVNContextPoolDelegate> delegate)
{
    const std::lock_guard guard(lock_);
    delegate_ = std::move(delegate);
}

std::int32_t LuSVNContextPool::maximumFreeSize() const
{
    const std::lock_guard guard(lock_);
    return maximumFreeSize_;
}

void LuSVNContextPool::setMaximumFreeSize(std::int32_t value)
{
    LUSVN_PARAMETER_ASSERT(value >= 0, "value >= 0");
    const std::lock_guard guard(lock_);
    maximumFreeSize_ = value;
}

std::int32_t LuSVNContextPool::freeSize() const
{
    const std::lock_guard guard(lock_);
    return static_cast<std::int32_t>(freeContexts_.size());
}

std::int32_t LuSVNContextPool::reservedSize() const
{
    const std::lock_guard guard(lock_);
    return static_cast<std::int32_t>(reservedContexts_.size());
}

std::shared_ptr<LuSVNContext> LuSVNContextPool::context()
{
    const std::lock_guard guard(lock_);
    const std::uint64_t thread = keyForThread();
    if (const auto attached = threadContexts_.find(thread); attached != threadContexts_.end()) {
        // Expired: another thread dropped this thread's last copy and its
        // release is waiting for the lock; this thread needs a new context.
        if (auto handle = attached->second.handle.lock())
            return handle;
    }
    auto pooled = std::make_shared<PooledContext>(PooledContext{dispenseContext(), shared_from_this()});
    PooledContext* const record = pooled.get();
    std::shared_ptr<LuSVNContext> handle(record->context.get(), Release{std::move(pooled)});
    threadContexts_.insert_or_assign(thread, Attachment{handle, record});
    return handle;
}

void LuSVNContextPool::removeAllContexts()
{
    const std::lock_guard guard(lock_);
    detachAllContexts();
    flush();
}

bool LuSVNContextPool::isPooledContext(const std::shared_ptr<LuSVNContext>& context)
{
    return std::get_deleter<Release>(context) != nullptr;
}

std::uint64_t LuSVNContextPool::keyForThread()
{
    static std::atomic<std::uint64_t> lastKey{0};
    thread_local const std::uint64_t key = ++lastKey;
    return key;
}

void LuSVNContextPool::createContext()
{
    std::shared_ptr<LuSVNContext> context = factory_->createContext();
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    if (const auto delegate = delegate_.lock())
        delegate->poolDidCreateContext(*this, *context);
    freeContexts_.push_back(std::move(context));
}

std::shared_ptr<LuSVNContext> LuSVNContextPool::reserveContext()
{
    if (freeContexts_.empty())
        return nullptr;
    std::shared_ptr<LuSVNContext> context = std::move(freeContexts_.back());
    freeContexts_.pop_back();
    reservedContexts_.push_back(context);
    if (const auto delegate = delegate_.lock())
        delegate->poolDidReserveContext(*this, *context);
    return context;
}

std::shared_ptr<LuSVNContext> LuSVNContextPool::dispenseContext()
{
    if (auto context = reserveContext())
        return context;
    createContext();
    return reserveContext();
}

void LuSVNContextPool::releaseContext(PooledContext& pooled)
{
    const std::lock_guard guard(lock_);
    if (pooled.returnToPool) {
        detachContextFromThread(pooled);
        returnContext(pooled.context);
        if (reservedContexts_.empty())
            drainToSize(maximumFreeSize_);
    } else {
        discardContext(pooled.context);
    }
}

void LuSVNContextPool::returnContext(const std::shared_ptr<LuSVNContext>& context)
{
    freeContexts_.push_back(context);
    if (const auto reserved = std::find(reservedContexts_.begin(), reservedContexts_.end(), context);
        reserved != reservedContexts_.end())
        reservedContexts_.erase(reserved);
    if (const auto delegate = delegate_.lock())
        delegate->poolDidReturnContext(*this, *context);
}

void LuSVNContextPool::discardContext(std::shared_ptr<LuSVNContext> context)
{
    // The argument keeps the context alive while the delegate looks at it.
    std::erase(freeContexts_, context);
    if (const auto delegate = delegate_.lock())
        delegate->poolDidDiscardContext(*this, *context);
}

void LuSVNContextPool::drainToSize(std::int32_t size)
{
    while (freeContexts_.size() > static_cast<std::size_t>(size))
        discardContext(freeContexts_.front());
}

void LuSVNContextPool::flush()
{
    drainToSize(0);
    reservedContexts_.clear();
}

void LuSVNContextPool::detachContextFromThread(const PooledContext& pooled)
{
    const auto attached = std::find_if(threadContexts_.begin(), threadContexts_.end(),
                                       [&](const auto& entry) { return entry.second.pooled == &pooled; });
    if (attached != threadContexts_.end())
        threadContexts_.erase(attached);
}

void LuSVNContextPool::detachAllContexts()
{
    for (auto& [thread, attachment] : threadContexts_)
        attachment.pooled->returnToPool = false;
    threadContexts_.clear();
}
