// The progress line: its figures, and how often it is drawn and erased.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "ProgressLine.h"

namespace {

using namespace std::chrono_literals;

TEST(TesseraProgressLine, Figures)
{
    const std::tuple<std::int64_t, double, std::int64_t, std::string> cases[] = {
        {0, 0, 0, "0 B, 0 items"},
        {512, 0, 1, "512 B, 1 item"},
        {1536, 1, 2, "1.5 KiB at 1.5 KiB/s, 2 items"},
        {10 * 1024 * 1024, 4, 300, "10.0 MiB at 2.5 MiB/s, 300 items"},
        {3LL << 40, 1024, 5, "3.0 TiB at 3.0 GiB/s, 5 items"},
    };
    for (const auto& [bytes, seconds, items, expected] : cases)
        EXPECT_EQ(progressText(bytes, std::chrono::duration<double>(seconds), items), expected);
}

std::string written(std::FILE* stream)
{
    std::string text(static_cast<std::size_t>(std::ftell(stream)), '\0');
    std::rewind(stream);
    text.resize(std::fread(text.data(), 1, text.size(), stream));
    return text;
}

TEST(TesseraProgressLine, RedrawnAtMostEachIntervalAndErased)
{
    std::FILE* stream = std::tmpfile();
    const auto start = TesseraProgressLine::Clock::time_point() + 1h;
    {
        TesseraProgressLine line(stream, true);
        line.update(0, 0, start);          // drawn at once
        line.update(100, 1, start + 10ms);  // too soon
        line.erase();                      // as before a notification line
        line.update(200, 2, start + 50ms);  // still too soon after the last drawing
        line.update(2048, 3, start + 1s);
    }
    EXPECT_EQ(written(stream), "\r\x1b[K0 B, 0 items\r\x1b[K\r\x1b[K2.0 KiB at 2.0 KiB/s, 3 items\r\x1b[K");
    std::fclose(stream);

    // Figures held back by the interval are drawn once more at the end, then erased.
    stream = std::tmpfile();
    {
        TesseraProgressLine line(stream, true);
        line.update(0, 0, start);
        line.update(4096, 7, start + 2s);
        line.update(8192, 9, start + 2s + 10ms);
    }
    EXPECT_EQ(written(stream), "\r\x1b[K0 B, 0 items\r\x1b[K4.0 KiB at 2.0 KiB/s, 7 items"
                               "\r\x1b[K8.0 KiB at 4.0 KiB/s, 9 items\r\x1b[K");
    std::fclose(stream);

    // Not on a terminal (or quiet): nothing at all.
    stream = std::tmpfile();
    {
        TesseraProgressLine line(stream, false);
        line.update(1, 1, start);
        line.erase();
    }
    EXPECT_EQ(written(stream), "");
    std::fclose(stream);
}

}  // namespace
