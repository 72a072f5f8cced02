// Conversions between dates and Subversion's times and date texts.
//
// A date is a std::chrono::system_clock::time_point. Subversion's times are
// APR times, signed 64-bit microseconds since 1970-01-01 00:00 UTC; a date
// made from one keeps the microseconds. The clock counts nanoseconds in 64
// bits and so covers 1677-09-21 to 2262-04-11: an APR time outside that range
// raises LuSVNInvalidArgumentException "Time out of range: <time>".
//
// "None" is std::nullopt: an APR time of 0 and a null text give no date.
// The operations of dates are static members here; ISO8601StringValue takes
// its date as argument.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <tessera/LuSVNExport.h>

struct apr_pool_t;

class TESSERA_EXPORT LuSVNDateConversion {
public:
    using Date = std::chrono::system_clock::time_point;

    LuSVNDateConversion() = delete;

    /// The date of an APR time. Raises "Invalid parameter not satisfying:
    /// time != 0" for 0.
    static Date initWithAPRTime(std::int64_t time);

    /// No date for an APR time of 0, else initWithAPRTime(time).
    static std::optional<Date> dateWithAPRTime(std::int64_t time);

    /// Parses Subversion's date text ("2010-05-04T10:11:12.123456Z", or the
    /// older "Tue 4 May 2010 ..." form) with the current backend in the given
    /// pool (entry point 25). No date for a null text, and none for the
    /// instant 1970-01-01T00:00:00Z, which is APR time 0. A text Subversion
    /// refuses raises LuSVNException (status 125003, "Bogus date"). Raises
    /// "Invalid parameter not satisfying: pool != nil" for a null pool.
    static std::optional<Date> dateWithISO8601CString(const char* text, apr_pool_t* pool);

    /// dateWithISO8601CString of the text's UTF-8 bytes (no date for nullopt).
    /// The text ends at its first NUL character, if any.
    static std::optional<Date> dateWithISO8601String(std::optional<std::string_view> text, apr_pool_t* pool);

    /// The same with the loader's newest backend and a pool of its own: no
    /// date for nullopt without touching a backend.
    static std::optional<Date> dateWithISO8601String(std::optional<std::string_view> text);

    /// The date in the local time zone as "yyyy-MM-ddTHH:mm:ss" when its hour,
    /// minute and second are all greater than 0, otherwise as "yyyy-MM-dd".
    /// So 10:00:00 and 00:30:15 are written as the date alone; fractions of a
    /// second are dropped.
    static std::string ISO8601StringValue(Date date);

    /// Reads a date written in the user's locale: the locale named by the
    /// environment (LC_ALL, else LC_TIME, else LANG; "C" and "POSIX" or none
    /// stand for American English) with its short, medium, long and full date
    /// formats, in that order. The first format that reads the whole text
    /// answers midnight of that day in the local time zone. No date when none
    /// does, the text is not UTF-8, or the day lies outside the clock's range.
    static std::optional<Date> parseDateString(std::string_view text);
};
