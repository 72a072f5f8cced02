// A line on a terminal that shows how far a transfer has come: bytes, rate
// and items, redrawn in place at most a few times a second and erased when
// the operation ends, so that what remains on the terminal is svn's output.
//
//   TesseraProgressLine line(stderr, isatty(STDERR_FILENO) && !quiet);
//   context->setProgressHandler([&](const LuSVNProgress& p) {
//       line.update(p.bytes, p.items, std::chrono::steady_clock::now());
//   });
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

/// "1.5 MiB at 512.0 KiB/s, 42 items": the bytes so far, the mean rate
/// since the start (left out before any time has passed) and the items.
std::string progressText(std::int64_t bytes, std::chrono::duration<double> elapsed, std::int64_t items);

class TesseraProgressLine {
public:
    using Clock = std::chrono::steady_clock;

    /// Draws on the stream only when enabled; the time of the first update
    /// is the start of the transfer.
    TesseraProgressLine(std::FILE* stream, bool enabled);
    /// finish().
    ~TesseraProgressLine();
    TesseraProgressLine(const TesseraProgressLine&) = delete;
    TesseraProgressLine& operator=(const TesseraProgressLine&) = delete;

    /// Redraws the line with the figures, unless it was drawn less than the
    /// redraw interval ago (the first figures show at once).
    void update(std::int64_t bytes, std::int64_t items, Clock::time_point now);
    /// Takes the line away (until the next redraw), as before other output.
    void erase();
    /// Draws the last figures when they were held back by the redraw
    /// interval, and takes the line away: the transfer has ended.
    void finish();

    /// The least time between two redraws.
    static constexpr Clock::duration redrawInterval = std::chrono::milliseconds(200);

private:
    void draw(Clock::time_point now);

    std::FILE* stream_;
    bool enabled_;
    bool shown_ = false;
    bool started_ = false;
    Clock::time_point start_;
    Clock::time_point lastDrawn_;
    // The latest figures and their time.
    std::int64_t bytes_ = 0;
    std::int64_t items_ = 0;
    Clock::time_point last_;
};
