#include "LuSVNTimerThread.h"

#include <tessera/LuSVNDebug.h>

#include <pthread.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <thread>

namespace tessera_private {

namespace {

struct Timer {
    std::shared_ptr<LuSVNClock> clock;
    LuSVNClock::TimePoint time;
    std::function<void()> action;
};

// Timers are few (one per cached entry with a date), so every pass simply
// looks at all of them: each may run by another clock.
class TimerThread {
public:
    LuSVNTimerId schedule(std::shared_ptr<LuSVNClock> clock, LuSVNClock::TimePoint time, std::function<void()> action)
    {
        std::lock_guard lock(mutex_);
        if (!started_) {
            std::thread([this] { run(); }).detach();
            started_ = true;
        }
        const LuSVNTimerId id = nextId_++;
        timers_.emplace(id, Timer{std::move(clock), time, std::move(action)});
        ++changes_;
        wake_.notify_all();
        return id;
    }

    void cancel(LuSVNTimerId id)
    {
        Timer cancelled;
        std::lock_guard lock(mutex_);
        const auto found = timers_.find(id);
        if (found == timers_.end())
            return;
        cancelled = std::move(found->second);  // released after the lock
        timers_.erase(found);
    }

    void runDue()
    {
        std::unique_lock lock(mutex_);
        if (!started_)
            return;
        const std::uint64_t request = ++changes_;
        wake_.notify_all();
        idle_.wait(lock, [&] { return served_ >= request; });
    }

private:
    void run()
    {
        pthread_setname_np(pthread_self(), "tessera-timers");
        std::unique_lock lock(mutex_);
        for (;;) {
            const std::uint64_t seen = changes_;
            const auto due = std::find_if(timers_.begin(), timers_.end(), [](const auto& timer) {
                return timer.second.clock->now() >= timer.second.time;
            });
            if (due != timers_.end()) {
                Timer timer = std::move(due->second);
                timers_.erase(due);
                lock.unlock();
                fire(timer);
                timer = {};  // whatever the action held goes outside the lock
                lock.lock();
                continue;
            }
            served_ = seen;
            idle_.notify_all();
            auto soonest = std::chrono::system_clock::duration::max();
            for (const auto& [id, timer] : timers_)
                soonest = std::min(soonest, timer.time - timer.clock->now());
            const auto changed = [&] { return changes_ != seen; };
            if (soonest == std::chrono::system_clock::duration::max())
                wake_.wait(lock, changed);
            else
                wake_.wait_for(lock, soonest, changed);
        }
    }

    static void fire(const Timer& timer) noexcept
    {
        try {
            timer.action();
        } catch (const std::exception& exception) {
            LuSVNDebug::logAtLevel(LuSVNLogLevelNormal, "Warning: expiry timer raised an exception: %s",
                                   exception.what());
        } catch (...) {
            LuSVNDebug::logAtLevel(LuSVNLogLevelNormal, "Warning: expiry timer raised an exception");
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable idle_;
    std::map<LuSVNTimerId, Timer> timers_;
    LuSVNTimerId nextId_ = 1;
    std::uint64_t changes_ = 0;
    std::uint64_t served_ = 0;
    bool started_ = false;
};

// Never destroyed: the detached thread may still wait on it while the
// process exits.
TimerThread& timerThread()
{
    static TimerThread* const thread = new TimerThread;
    return *thread;
}

}  // namespace

LuSVNTimerId LuSVNScheduleTimer(std::shared_ptr<LuSVNClock> clock, LuSVNClock::TimePoint time,
                                std::function<void()> action)
{
    return timerThread().schedule(std::move(clock), time, std::move(action));
}

void LuSVNCancelTimer(LuSVNTimerId timer)
{
    if (timer != 0)
        timerThread().cancel(timer);
}

void LuSVNRunDueTimers()
{
    timerThread().runDue();
}

}  // namespace tessera_private
