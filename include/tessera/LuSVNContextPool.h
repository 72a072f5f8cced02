// A pool of client contexts shared by the threads of an application.
//
//   auto pool = LuSVNContextPool::poolWithFactory(factory);
//   pool->setMaximumFreeSize(4);
//   {
//       std::shared_ptr<LuSVNContext> context = pool->context();  // this thread's context
//       auto ignores = context->globalIgnoreList();               // use it as the context
//   }                                                             // back to the pool
//
// Making a context is costly (a backend pool, the configuration, an
// authentication stack), so the pool keeps idle contexts made by the factory
// and hands each thread at most one at a time. What context() returns is a
// handle to the real context: while any copy of it lives, every call of
// context() on that thread returns the same handle; when the last copy goes,
// on whichever thread drops it, the real context goes back to the pool, once.
// Idle contexts are reused last returned, first handed out. The pool keeps
// at most maximumFreeSize() idle contexts, trimming the oldest only when the
// last context handed out comes back, so it may hold more while any is out.
//
// Threads: every operation takes the pool's own lock; the delegate is told
// while the lock is held, so it must not wait for another thread that uses
// the pool. A handle keeps its pool alive.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNExport.h>

class LuSVNContextPool;

/// Makes the contexts of a pool.
class TESSERA_EXPORT LuSVNContextFactory {
public:
    virtual ~LuSVNContextFactory();

    /// A new context, never null. Called with the pool's lock held.
    virtual std::shared_ptr<LuSVNContext> createContext() = 0;
};

/// The application's listener of a pool. Every operation is optional (the
/// default does nothing); each is called with the real context, never a
/// handle, under the pool's lock.
class TESSERA_EXPORT LuSVNContextPoolDelegate {
public:
    virtual ~LuSVNContextPoolDelegate();

    /// The factory made the context; it is now idle in the pool.
    virtual void poolDidCreateContext(LuSVNContextPool& pool, LuSVNContext& context);
    /// The context is about to be handed to a thread.
    virtual void poolDidReserveContext(LuSVNContextPool& pool, LuSVNContext& context);
    /// The context came back and is idle.
    virtual void poolDidReturnContext(LuSVNContextPool& pool, LuSVNContext& context);
    /// The pool let go of the context (trimmed, or returned after
    /// removeAllContexts).
    virtual void poolDidDiscardContext(LuSVNContextPool& pool, LuSVNContext& context);
};

class TESSERA_EXPORT LuSVNContextPool : public std::enable_shared_from_this<LuSVNContextPool> {
public:
    /// An empty pool that makes its contexts with the factory (retained).
    /// Raises "Invalid parameter not satisfying: theFactory != nil" for null.
    static std::shared_ptr<LuSVNContextPool> poolWithFactory(std::shared_ptr<LuSVNContextFactory> factory);

    ~LuSVNContextPool();
    LuSVNContextPool(const LuSVNContextPool&) = delete;
    LuSVNContextPool& operator=(const LuSVNContextPool&) = delete;

    /// Not retained.
    std::shared_ptr<LuSVNContextPoolDelegate> delegate() const;
    void setDelegate(std::weak_ptr<LuSVNContextPoolDelegate> delegate);

    /// The number of idle contexts kept once every context is back; 10 by
    /// default. Raises "Invalid parameter not satisfying: value >= 0" for a
    /// negative value.
    std::int32_t maximumFreeSize() const;
    void setMaximumFreeSize(std::int32_t value);

    /// Idle contexts, and contexts handed out.
    std::int32_t freeSize() const;
    std::int32_t reservedSize() const;

    /// The calling thread's context: the handle this thread already holds,
    /// else an idle context (the one returned last), else a new one from the
    /// factory. Raises "Invalid parameter not satisfying: context != nil"
    /// when the factory answers null, and what the factory raises.
    std::shared_ptr<LuSVNContext> context();

    /// Forgets every context: idle ones are discarded now; handles still held
    /// stay usable, but their contexts are discarded, not returned, when they
    /// go, and the threads holding them get a fresh context from context().
    void removeAllContexts();

    /// Whether the context is a handle handed out by a pool.
    static bool isPooledContext(const std::shared_ptr<LuSVNContext>& context);

private:
    // What a handle stands for; its deleter owns it and hands it back once.
    struct PooledContext;
    struct Release;

    explicit LuSVNContextPool(std::shared_ptr<LuSVNContextFactory> factory);

    // The calling thread's key, never reused for another thread.
    static std::uint64_t keyForThread();

    // Each runs under the lock.
    void createContext();
    std::shared_ptr<LuSVNContext> reserveContext();
    std::shared_ptr<LuSVNContext> dispenseContext();
    void releaseContext(PooledContext& pooled);
    void returnContext(const std::shared_ptr<LuSVNContext>& context);
    void discardContext(std::shared_ptr<LuSVNContext> context);
    void drainToSize(std::int32_t size);
    void flush();
    void detachContextFromThread(const PooledContext& pooled);
    void detachAllContexts();

    // A handle attached to a thread: not retained, so that the handle's
    // last release can happen; the record lives until that release detaches
    // it under the lock.
    struct Attachment {
        std::weak_ptr<LuSVNContext> handle;
        PooledContext* pooled;
    };

    mutable std::recursive_mutex lock_;
    std::weak_ptr<LuSVNContextPoolDelegate> delegate_;
    const std::shared_ptr<LuSVNContextFactory> factory_;
    std::int32_t maximumFreeSize_ = 10;
    std::vector<std::shared_ptr<LuSVNContext>> freeContexts_;      // most recently returned last
    std::vector<std::shared_ptr<LuSVNContext>> reservedContexts_;  // in the order handed out
    // A map under the lock rather than thread_local data, since the records
    // belong to one pool and removeAllContexts must reach every thread's.
    // Keyed by a number each thread draws once (keyForThread), not by
    // std::thread::id, which the system gives again to a later thread while
    // the handle of an ended one may still be held.
    std::map<std::uint64_t, Attachment> threadContexts_;
};
