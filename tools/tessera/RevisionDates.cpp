#include "RevisionDates.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

std::string repositoryDate(std::chrono::system_clock::time_point date)
{
    const auto micros = std::chrono::floor<std::chrono::microseconds>(date.time_since_epoch()).count();
    const auto seconds = static_cast<std::time_t>(std::chrono::floor<std::chrono::seconds>(date.time_since_epoch()).count());
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%06lldZ", utc.tm_year + 1900, utc.tm_mon + 1,
                  utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec,
                  static_cast<long long>(micros - static_cast<long long>(seconds) * 1000000));
    return text;
}

std::string humanDate(std::chrono::system_clock::time_point date)
{
    const auto seconds = static_cast<std::time_t>(std::chrono::floor<std::chrono::seconds>(date.time_since_epoch()).count());
    tzset();  // localtime_r alone would keep the zone it first saw
    std::tm local{};
    localtime_r(&seconds, &local);
    // Only the hours carry the sign, as svn writes the offset (a zone half an
    // hour west of UTC reads "+0030").
    const long offset = local.tm_gmtoff;
    char text[96];
    int length = std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d %+.2ld%.2ld (", local.tm_year + 1900,
                               local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                               offset / 3600, std::labs(offset % 3600) / 60);
    length += static_cast<int>(
        std::strftime(text + length, sizeof text - static_cast<std::size_t>(length), "%a, %d %b %Y)", &local));
    return std::string(text, static_cast<std::size_t>(length));
}
