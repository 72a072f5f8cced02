#include <tessera/LuSVNLogItem.h>

#include <algorithm>
#include <ctime>

namespace {

// The date in UTC to the second, as the platform's default date text reads.
std::string dateText(const LuSVNLogItem::Date& date)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(date);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S +0000", &utc);
    return text;
}

}  // namespace

std::string LuSVNLogItem::stringValue() const
{
    std::string text(72, '-');
    text += "\nr" + std::to_string(revision_) + " | " + author_.value_or("(null)") + " | " +
            (date_ ? dateText(*date_) : "(null)") + "\nChanged paths:\n";
    auto paths = changedPaths();
    std::sort(paths.begin(), paths.end());
    for (const auto& path : paths) {
        const auto& change = *changes_.at(path);
        text += "  ";
        text += LuSVNCharFromLogAction(change.action());
        text += " " + path;
        if (change.copyPath())
            text += " (from " + *change.copyPath() + ":" + std::to_string(change.copyRevision()) + ")";
        text += "\n";
    }
    return text + "\n" + message_.value_or("(null)") + "\n";
}
