// Byte streams of the application handed to Subversion.
//
// Operations that read or write contents (file contents, diffs) take the
// application's stream; the library wraps it as a Subversion stream. The
// wrapper keeps a reference to the application stream until it is closed or
// its pool goes, and never closes the application stream itself: opening and
// closing stay with the owner.
//
//   std::ostringstream text;
//   auto out = LuSVNStdOutputStream::streamWithStream(text);
//   svn_stream_t* stream = LuSVNAdaptOutputStream(out, pool);
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>

#include <tessera/LuSVNExport.h>

struct apr_pool_t;
struct svn_stream_t;
struct svn_error_t;

/// A source of bytes.
class TESSERA_EXPORT LuSVNInputStream {
public:
    virtual ~LuSVNInputStream();
    /// Reads up to maxLength bytes; returns the count read, 0 at the end, -1
    /// on failure.
    virtual long read(std::uint8_t* buffer, std::size_t maxLength) = 0;
};

/// A sink of bytes.
class TESSERA_EXPORT LuSVNOutputStream {
public:
    virtual ~LuSVNOutputStream();
    /// Writes up to length bytes; returns the count written (possibly fewer),
    /// -1 on failure.
    virtual long write(const std::uint8_t* buffer, std::size_t length) = 0;
};

/// An input stream reading a std::istream that outlives it.
class TESSERA_EXPORT LuSVNStdInputStream : public LuSVNInputStream {
public:
    static std::shared_ptr<LuSVNStdInputStream> streamWithStream(std::istream& stream);
    long read(std::uint8_t* buffer, std::size_t maxLength) override;

private:
    explicit LuSVNStdInputStream(std::istream& stream) : stream_(stream) {}
    std::istream& stream_;
};

/// An output stream writing to a std::ostream that outlives it.
class TESSERA_EXPORT LuSVNStdOutputStream : public LuSVNOutputStream {
public:
    static std::shared_ptr<LuSVNStdOutputStream> streamWithStream(std::ostream& stream);
    long write(const std::uint8_t* buffer, std::size_t length) override;

private:
    explicit LuSVNStdOutputStream(std::ostream& stream) : stream_(stream) {}
    std::ostream& stream_;
};

/// A Subversion stream reading from the application stream (entry points 111,
/// 108, 110), in the pool.
TESSERA_EXPORT svn_stream_t* LuSVNAdaptInputStream(std::shared_ptr<LuSVNInputStream> inputStream, apr_pool_t* pool);

/// A Subversion stream writing to the application stream (entry points 111,
/// 109, 110), in the pool.
TESSERA_EXPORT svn_stream_t* LuSVNAdaptOutputStream(std::shared_ptr<LuSVNOutputStream> outputStream,
                                                    apr_pool_t* pool);

extern "C" {
/// Read function of an adapted input stream: error 20014 "Unable to read data
/// from input stream" when the application stream fails.
TESSERA_EXPORT svn_error_t* LuSVNAdaptStreamRead(void* baton, char* buffer, std::size_t* length);
/// Write function of an adapted output stream: error 20014 "Unable to write
/// data to output stream" when the application stream fails.
TESSERA_EXPORT svn_error_t* LuSVNAdaptStreamWrite(void* baton, const char* data, std::size_t* length);
/// Close function: releases the reference to the application stream.
TESSERA_EXPORT svn_error_t* LuSVNAdaptStreamClose(void* baton);
}
