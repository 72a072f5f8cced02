#include "ProgressLine.h"

namespace {

// Binary units, as a person reads sizes on a terminal.
std::string size(double bytes)
{
    static constexpr const char* units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    std::size_t unit = 0;
    while (bytes >= 1024 && unit + 1 < std::size(units)) {
        bytes /= 1024;
        ++unit;
    }
    char text[32];
    if (unit == 0)
        std::snprintf(text, sizeof text, "%.0f B", bytes);
    else
        std::snprintf(text, sizeof text, "%.1f %s", bytes, units[unit]);
    return text;
}

// Back to the start of the line and clear it.
constexpr const char* eraseLine = "\r\x1b[K";

}  // namespace

std::string progressText(std::int64_t bytes, std::chrono::duration<double> elapsed, std::int64_t items)
{
    std::string text = size(static_cast<double>(bytes));
    if (elapsed.count() > 0)
        text += " at " + size(static_cast<double>(bytes) / elapsed.count()) + "/s";
    return text + ", " + std::to_string(items) + (items == 1 ? " item" : " items");
}

TesseraProgressLine::TesseraProgressLine(std::FILE* stream, bool enabled) : stream_(stream), enabled_(enabled) {}

TesseraProgressLine::~TesseraProgressLine()
{
    finish();
}

void TesseraProgressLine::update(std::int64_t bytes, std::int64_t items, Clock::time_point now)
{
    if (!enabled_)
        return;
    bytes_ = bytes;
    items_ = items;
    last_ = now;
    // The first figures show at once; later ones wait their turn, also
    // after an erase, so that output between them does not speed it up.
    if (!started_) {
        started_ = true;
        start_ = now;
    } else if (now - lastDrawn_ < redrawInterval) {
        return;
    }
    draw(now);
}

void TesseraProgressLine::draw(Clock::time_point now)
{
    lastDrawn_ = now;
    shown_ = true;
    std::fprintf(stream_, "%s%s", eraseLine, progressText(bytes_, last_ - start_, items_).c_str());
    std::fflush(stream_);
}

void TesseraProgressLine::finish()
{
    // The final figures go out too, though erased at once: a recording of the
    // terminal then ends with them.
    if (enabled_ && started_ && last_ != lastDrawn_)
        draw(last_);
    erase();
}

void TesseraProgressLine::erase()
{
    if (!shown_)
        return;
    shown_ = false;
    std::fputs(eraseLine, stream_);
    std::fflush(stream_);
}
