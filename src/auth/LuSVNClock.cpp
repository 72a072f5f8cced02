#include <tessera/LuSVNClock.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "LuSVNTimerThread.h"

namespace {

class SystemClock : public LuSVNClock {
public:
    TimePoint now() const override { return std::chrono::system_clock::now(); }
};

}  // namespace

LuSVNClock::~LuSVNClock() = default;

std::shared_ptr<LuSVNClock> LuSVNClock::systemClock()
{
    static const auto clock = std::make_shared<SystemClock>();
    return clock;
}

std::shared_ptr<LuSVNManualClock> LuSVNManualClock::clockAt(TimePoint time)
{
    return std::make_shared<LuSVNManualClock>(time);
}

LuSVNClock::TimePoint LuSVNManualClock::now() const
{
    std::lock_guard lock(mutex_);
    return time_;
}

void LuSVNManualClock::advance(std::chrono::system_clock::duration duration)
{
    if (duration < duration.zero())
        throw LuSVNInvalidArgumentException("A clock cannot go back");
    {
        std::lock_guard lock(mutex_);
        time_ += duration;
    }
    tessera_private::LuSVNRunDueTimers();
}
