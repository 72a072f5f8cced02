#include <tessera/LuSVNStreams.h>

#include <algorithm>
#include <istream>
#include <limits>
#include <ostream>
#include <new>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"

LuSVNInputStream::~LuSVNInputStream() = default;
LuSVNOutputStream::~LuSVNOutputStream() = default;

std::shared_ptr<LuSVNStdInputStream> LuSVNStdInputStream::streamWithStream(std::istream& stream)
{
    return std::shared_ptr<LuSVNStdInputStream>(new LuSVNStdInputStream(stream));
}

long LuSVNStdInputStream::read(std::uint8_t* buffer, std::size_t maxLength)
{
    if (stream_.bad())
        return -1;
    stream_.read(reinterpret_cast<char*>(buffer), static_cast<std::streamsize>(maxLength));
    if (stream_.bad())
        return -1;
    return static_cast<long>(stream_.gcount());
}

std::shared_ptr<LuSVNStdOutputStream> LuSVNStdOutputStream::streamWithStream(std::ostream& stream)
{
    return std::shared_ptr<LuSVNStdOutputStream>(new LuSVNStdOutputStream(stream));
}

long LuSVNStdOutputStream::write(const std::uint8_t* buffer, std::size_t length)
{
    stream_.write(reinterpret_cast<const char*>(buffer), static_cast<std::streamsize>(length));
    return stream_ ? static_cast<long>(length) : -1;
}

namespace {

// The baton lives in the pool. It holds the application stream until the
// Subversion stream is closed or, at the latest, until the pool goes, so an
// unclosed stream does not leak.
struct StreamBaton {
    std::shared_ptr<LuSVNInputStream> input;
    std::shared_ptr<LuSVNOutputStream> output;
};

extern "C" int destroyStreamBaton(void* baton)
{
    static_cast<StreamBaton*>(baton)->~StreamBaton();
    return 0;
}

StreamBaton* makeBaton(apr_pool_t* pool)
{
    void* memory = LuSVNEntry<3>()(pool, sizeof(StreamBaton));
    auto* baton = new (memory) StreamBaton();
    LuSVNEntry<5>()(pool, baton, destroyStreamBaton, LuSVNEntry<6>());
    return baton;
}

// At most a 32-bit count per call, as the application streams take it.
std::size_t clampedLength(std::size_t length)
{
    return std::min<std::size_t>(length, std::numeric_limits<std::int32_t>::max());
}

}  // namespace

svn_stream_t* LuSVNAdaptInputStream(std::shared_ptr<LuSVNInputStream> inputStream, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(inputStream != nullptr, "inputStream != nil");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    StreamBaton* baton = makeBaton(pool);
    baton->input = std::move(inputStream);
    svn_stream_t* stream = LuSVNEntry<111>()(baton, pool);
    LuSVNEntry<108>()(stream, LuSVNAdaptStreamRead);
    LuSVNEntry<110>()(stream, LuSVNAdaptStreamClose);
    return stream;
}

svn_stream_t* LuSVNAdaptOutputStream(std::shared_ptr<LuSVNOutputStream> outputStream, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(outputStream != nullptr, "outputStream != nil");
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    StreamBaton* baton = makeBaton(pool);
    baton->output = std::move(outputStream);
    svn_stream_t* stream = LuSVNEntry<111>()(baton, pool);
    LuSVNEntry<109>()(stream, LuSVNAdaptStreamWrite);
    LuSVNEntry<110>()(stream, LuSVNAdaptStreamClose);
    return stream;
}

extern "C" svn_error_t* LuSVNAdaptStreamRead(void* baton, char* buffer, std::size_t* length)
{
    auto* streams = static_cast<StreamBaton*>(baton);
    long count = -1;
    try {
        if (streams->input)
            count = streams->input->read(reinterpret_cast<std::uint8_t*>(buffer), clampedLength(*length));
    } catch (...) {
        count = -1;  // an exception must not cross Subversion's frames
    }
    if (count < 0)
        return LuSVNCreateError(20014, "Unable to read data from input stream", __FILE__, __LINE__);
    *length = static_cast<std::size_t>(count);
    return nullptr;
}

extern "C" svn_error_t* LuSVNAdaptStreamWrite(void* baton, const char* data, std::size_t* length)
{
    auto* streams = static_cast<StreamBaton*>(baton);
    long count = -1;
    try {
        if (streams->output)
            count = streams->output->write(reinterpret_cast<const std::uint8_t*>(data), clampedLength(*length));
    } catch (...) {
        count = -1;
    }
    if (count < 0)
        return LuSVNCreateError(20014, "Unable to write data to output stream", __FILE__, __LINE__);
    *length = static_cast<std::size_t>(count);
    return nullptr;
}

extern "C" svn_error_t* LuSVNAdaptStreamClose(void* baton)
{
    auto* streams = static_cast<StreamBaton*>(baton);
    streams->input.reset();
    streams->output.reset();
    return nullptr;
}
