#include <tessera/LuSVNDateConversion.h>

#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNStrings.h>

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/parsepos.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <memory>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"

using Date = LuSVNDateConversion::Date;

namespace {

// The clock's range in whole units (truncated towards zero), so that no
// conversion into it overflows.
constexpr std::int64_t maximumSeconds =
    std::chrono::duration_cast<std::chrono::seconds>(Date::duration::max()).count();
constexpr std::int64_t minimumSeconds =
    std::chrono::duration_cast<std::chrono::seconds>(Date::duration::min()).count();
constexpr std::int64_t maximumMicroseconds =
    std::chrono::duration_cast<std::chrono::microseconds>(Date::duration::max()).count();
constexpr std::int64_t minimumMicroseconds =
    std::chrono::duration_cast<std::chrono::microseconds>(Date::duration::min()).count();

std::optional<Date> dateFromSeconds(std::int64_t seconds)
{
    if (seconds > maximumSeconds || seconds < minimumSeconds)
        return std::nullopt;
    return Date(std::chrono::seconds(seconds));
}

// The user's locale as the C library resolves it from the environment. ICU
// would read the environment only once per process; reading it on every call
// follows a host that changes it.
icu::Locale userLocale()
{
    std::string name = "C";
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        if (const char* value = std::getenv(variable); value && *value) {
            name = value;
            break;
        }
    }
    const std::string language = name.substr(0, name.find_first_of(".@"));
    if (language == "C" || language == "POSIX")
        return icu::Locale("en_US_POSIX");
    return icu::Locale::createCanonical(name.c_str());
}

// Midnight, local time, of the calendar day that holds the instant ICU parsed
// in UTC. The day comes from ICU, the time zone from the C library, so that
// ISO8601StringValue and this agree on what "local" means.
std::optional<Date> localMidnight(UDate milliseconds)
{
    constexpr double millisecondsPerDay = 86400000.0;
    if (!(std::fabs(milliseconds) < static_cast<double>(maximumSeconds) * 1000.0))
        return std::nullopt;
    const std::chrono::sys_days day{
        std::chrono::days{static_cast<std::int64_t>(std::floor(milliseconds / millisecondsPerDay))}};
    const std::chrono::year_month_day calendarDay{day};
    std::tm fields{};
    fields.tm_year = static_cast<int>(calendarDay.year()) - 1900;
    fields.tm_mon = static_cast<int>(static_cast<unsigned>(calendarDay.month())) - 1;
    fields.tm_mday = static_cast<int>(static_cast<unsigned>(calendarDay.day()));
    fields.tm_isdst = -1;
    const std::time_t seconds = std::mktime(&fields);
    if (seconds == -1)
        return std::nullopt;
    return dateFromSeconds(seconds);
}

}  // namespace

Date LuSVNDateConversion::initWithAPRTime(std::int64_t time)
{
    LUSVN_PARAMETER_ASSERT(time != 0, "time != 0");
    if (time > maximumMicroseconds || time < minimumMicroseconds)
        throw LuSVNInvalidArgumentException("Time out of range: " + std::to_string(time));
    return Date(std::chrono::duration_cast<Date::duration>(std::chrono::microseconds(time)));
}

std::optional<Date> LuSVNDateConversion::dateWithAPRTime(std::int64_t time)
{
    if (time == 0)
        return std::nullopt;
    return initWithAPRTime(time);
}

std::optional<Date> LuSVNDateConversion::dateWithISO8601CString(const char* text, apr_pool_t* pool)
{
    if (!text)
        return std::nullopt;
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    LUSVN_TRACE("LuSVNDateConversion", "dateWithISO8601CString:usingPool", {"string", text});
    apr_time_t time = 0;
    LuSVNThrowIfError(LuSVNEntry<25>()(&time, text, pool));
    return dateWithAPRTime(time);
}

std::optional<Date> LuSVNDateConversion::dateWithISO8601String(std::optional<std::string_view> text, apr_pool_t* pool)
{
    if (!text)
        return std::nullopt;
    return dateWithISO8601CString(std::string(*text).c_str(), pool);
}

std::optional<Date> LuSVNDateConversion::dateWithISO8601String(std::optional<std::string_view> text)
{
    if (!text)
        return std::nullopt;
    LUSVN_TRACE("LuSVNDateConversion", "dateWithISO8601String", {"string", std::string(*text)});
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    return dateWithISO8601String(text, frame.pool());
}

std::string LuSVNDateConversion::ISO8601StringValue(Date date)
{
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(date.time_since_epoch()).count();
    std::tm local{};
    tzset();  // localtime_r alone would keep the zone it first saw
    // The clock's range lies well inside what localtime_r converts.
    localtime_r(&seconds, &local);
    char text[64];
    if (local.tm_hour > 0 && local.tm_min > 0 && local.tm_sec > 0)
        std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                      local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    else
        std::snprintf(text, sizeof text, "%04d-%02d-%02d", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
    return text;
}

std::optional<Date> LuSVNDateConversion::parseDateString(std::string_view text)
{
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max()) || !LuSVNIsValidUTF8(text))
        return std::nullopt;
    const icu::UnicodeString unicode =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    const icu::Locale locale = userLocale();
    for (const auto style : {icu::DateFormat::kShort, icu::DateFormat::kMedium, icu::DateFormat::kLong,
                             icu::DateFormat::kFull}) {
        const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateInstance(style, locale));
        if (!format)
            continue;
        format->setLenient(false);
        format->setTimeZone(*icu::TimeZone::getGMT());
        icu::ParsePosition position(0);
        const UDate parsed = format->parse(unicode, position);
        if (position.getErrorIndex() < 0 && position.getIndex() == unicode.length() && unicode.length() > 0)
            return localMidnight(parsed);
    }
    return std::nullopt;
}
