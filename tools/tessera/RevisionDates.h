// A revision's date as svn prints it.
#pragma once

#include <chrono>
#include <string>

/// svn:date as the repository stores it: UTC with microseconds,
/// "2026-11-24T05:09:18.123456Z".
std::string repositoryDate(std::chrono::system_clock::time_point date);

/// svn's date for people, in the local time zone:
/// "2026-11-24 05:09:18 +0000 (Tue, 24 Nov 2026)".
std::string humanDate(std::chrono::system_clock::time_point date);
