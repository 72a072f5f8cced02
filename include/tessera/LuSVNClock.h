// The time that credential expiry is measured in.
//
// A credentials cache (LuSVNCredentialsCache.h) reads the time from its
// clock, and its expiry timers run by that clock: the system clock by
// default, a LuSVNManualClock where time must move only when told (tests, or
// an application replaying a session).
//
//   auto clock = LuSVNManualClock::clockAt(std::chrono::system_clock::now());
//   auto cache = LuSVNCredentialsCache::cacheWithClock(clock);
//   ...
//   clock->advance(std::chrono::minutes(5));   // timers now due have run
#pragma once

#include <chrono>
#include <memory>
#include <mutex>

#include <tessera/LuSVNExport.h>

/// A source of the current time.
class TESSERA_EXPORT LuSVNClock {
public:
    /// Times are those of std::chrono::system_clock.
    using TimePoint = std::chrono::system_clock::time_point;

    virtual ~LuSVNClock();

    /// The current time of this clock.
    virtual TimePoint now() const = 0;

    /// The clock of the system (std::chrono::system_clock), shared.
    static std::shared_ptr<LuSVNClock> systemClock();
};

/// A clock that stands still until it is advanced.
class TESSERA_EXPORT LuSVNManualClock : public LuSVNClock {
public:
    /// A clock standing at the given time.
    static std::shared_ptr<LuSVNManualClock> clockAt(TimePoint time);

    /// The time it stands at.
    TimePoint now() const override;

    /// Moves the time on by the duration (a negative one is refused with
    /// LuSVNInvalidArgumentException) and returns once every expiry timer
    /// of this clock that is then due has run.
    void advance(std::chrono::system_clock::duration duration);

    /// Use clockAt.
    explicit LuSVNManualClock(TimePoint time) : time_(time) {}

private:
    mutable std::mutex mutex_;
    TimePoint time_;
};
