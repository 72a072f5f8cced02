// One-shot timers on one library thread, "tessera-timers", started at the
// first timer: expiry of cached credentials runs there.
#pragma once

#include <tessera/LuSVNClock.h>
#include <tessera/LuSVNExport.h>

#include <cstdint>
#include <functional>
#include <memory>

class LuSVNCredentials;
class LuSVNCredentialsCache;

namespace tessera_private {

/// A timer's handle; 0 is no timer.
using LuSVNTimerId = std::uint64_t;

/// Runs the action on the timer thread once the clock reaches the time. The
/// timer keeps the clock alive until it has run or was cancelled.
TESSERA_EXPORT LuSVNTimerId LuSVNScheduleTimer(std::shared_ptr<LuSVNClock> clock, LuSVNClock::TimePoint time,
                                               std::function<void()> action);

/// Forgets a timer that has not yet run; nothing for one that has run or runs
/// now (it never waits, so an action may cancel timers itself).
TESSERA_EXPORT void LuSVNCancelTimer(LuSVNTimerId timer);

/// Tells the timer thread that a clock moved and returns once every timer
/// then due has run.
TESSERA_EXPORT void LuSVNRunDueTimers();

/// The action of an expiry policy's timer: removes the credentials from the
/// cache if the cache still exists and holds that very object.
std::function<void()> LuSVNExpireCredentialsAction(LuSVNCredentialsCache& cache,
                                                   const std::shared_ptr<LuSVNCredentials>& credentials);

}  // namespace tessera_private
