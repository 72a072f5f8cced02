// Objects kept alive by Subversion pools, and application streams adapted
// as Subversion streams.
#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNPool.h>
#include <tessera/LuSVNStreams.h>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>

#include "LuSVNBackendFrame.h"
#include "TesseraTestSupport.h"

namespace {

class PoolTest : public testing::Test {
protected:
    apr_pool_t* subpool() { return LuSVNEntry<19>()(frame.pool(), nullptr); }
    void destroy(apr_pool_t* pool) { LuSVNEntry<20>()(pool); }

    LuSVNBackendFrame frame{LuSVNBundleLoader::sharedInstance()->newestBundle()};
};

TEST_F(PoolTest, RetainedObjectIsReleasedOnceWhenThePoolGoes)
{
    for (int retains : {1, 2, 3}) {
        SCOPED_TRACE(retains);
        int deletions = 0;
        std::weak_ptr<int> watch;
        apr_pool_t* pool = subpool();
        {
            std::shared_ptr<int> object(new int(7), [&deletions](int* p) {
                ++deletions;
                delete p;
            });
            watch = object;
            for (int i = 0; i < retains; ++i)
                EXPECT_EQ(LuSVNRetainInPool(object, pool), object);
            EXPECT_EQ(object.use_count(), 1 + retains);
        }
        // Only the pool holds it now.
        EXPECT_EQ(deletions, 0);
        EXPECT_EQ(watch.use_count(), retains);
        destroy(pool);
        EXPECT_EQ(deletions, 1);
        EXPECT_TRUE(watch.expired());
    }
}

TEST_F(PoolTest, ObjectInAParentPoolOutlivesTheChild)
{
    int deletions = 0;
    apr_pool_t* parent = subpool();
    apr_pool_t* child = LuSVNEntry<19>()(parent, nullptr);
    LuSVNRetainInPool(std::shared_ptr<int>(new int(1), [&deletions](int* p) {
                          ++deletions;
                          delete p;
                      }),
                      parent);
    destroy(child);
    EXPECT_EQ(deletions, 0);
    destroy(parent);
    EXPECT_EQ(deletions, 1);
}

TEST_F(PoolTest, NullPoolIsRefused)
{
    tessera_test::expectParameterAssertion([] { LuSVNRetainInPool(std::make_shared<int>(1), nullptr); },
                                           "pool != nil");
}

// Input and output streams that fail one way or another.
class FailingInput final : public LuSVNInputStream {
public:
    explicit FailingInput(bool throws) : throws_(throws) {}
    long read(std::uint8_t*, std::size_t) override
    {
        if (throws_)
            throw std::runtime_error("read failed");
        return -1;
    }

private:
    bool throws_;
};

class FailingOutput final : public LuSVNOutputStream {
public:
    explicit FailingOutput(bool throws) : throws_(throws) {}
    long write(const std::uint8_t*, std::size_t) override
    {
        if (throws_)
            throw std::runtime_error("write failed");
        return -1;
    }

private:
    bool throws_;
};

void* capturedBaton = nullptr;

extern "C" svn_error_t* captureBaton(void* baton)
{
    capturedBaton = baton;
    return nullptr;
}

class StreamTest : public PoolTest {
protected:
    // The baton of an adapted stream, as Subversion hands it to the stream's
    // functions: found by closing through Subversion with a probe installed,
    // then the adapter's close function is put back.
    void* batonOf(svn_stream_t* stream)
    {
        capturedBaton = nullptr;
        LuSVNEntry<110>()(stream, captureBaton);
        LuSVNThrowIfError(LuSVNEntry<112>()(stream));
        LuSVNEntry<110>()(stream, LuSVNAdaptStreamClose);
        return capturedBaton;
    }

    std::string readAll(void* baton, std::size_t chunk)
    {
        std::string result;
        for (;;) {
            std::string buffer(chunk, '\0');
            std::size_t length = chunk;
            LuSVNThrowIfError(LuSVNAdaptStreamRead(baton, buffer.data(), &length));
            if (length == 0)
                return result;
            EXPECT_LE(length, chunk);
            result.append(buffer, 0, length);
        }
    }

    // The exception that a failing adapter's error converts to.
    std::shared_ptr<LuSVNException> failureOf(svn_error_t* error)
    {
        if (!error)
            return nullptr;
        return LuSVNException::exceptionWithError(error);
    }
};

TEST_F(StreamTest, InputStreamReadsTheSourceToItsEnd)
{
    std::string source;
    for (int i = 0; i < 1000; ++i)
        source += std::to_string(i) + (i % 7 ? " " : "\n");
    source += std::string("\0\xff\xfe", 3);
    for (std::size_t chunk : {1, 7, 4096, 100000}) {
        SCOPED_TRACE(chunk);
        std::istringstream text(source);
        svn_stream_t* stream = LuSVNAdaptInputStream(LuSVNStdInputStream::streamWithStream(text), frame.pool());
        ASSERT_NE(stream, nullptr);
        void* baton = batonOf(stream);
        ASSERT_NE(baton, nullptr);
        EXPECT_EQ(readAll(baton, chunk), source);
        // At the end it keeps answering 0 without an error.
        char buffer[8];
        std::size_t length = sizeof buffer;
        EXPECT_EQ(LuSVNAdaptStreamRead(baton, buffer, &length), nullptr);
        EXPECT_EQ(length, 0u);
    }
}

TEST_F(StreamTest, FailuresBecomeErrorsThatConvertToStatus20014)
{
    std::istringstream badInput("data");
    badInput.setstate(std::ios::badbit);
    std::ostringstream badOutput;
    badOutput.setstate(std::ios::badbit);

    const struct {
        const char* label;
        std::shared_ptr<LuSVNInputStream> input;
    } inputs[] = {
        {"returns -1", std::make_shared<FailingInput>(false)},
        {"throws", std::make_shared<FailingInput>(true)},
        {"bad std::istream", LuSVNStdInputStream::streamWithStream(badInput)},
    };
    for (const auto& c : inputs) {
        SCOPED_TRACE(c.label);
        void* baton = batonOf(LuSVNAdaptInputStream(c.input, frame.pool()));
        char buffer[16];
        std::size_t length = sizeof buffer;
        auto failure = failureOf(LuSVNAdaptStreamRead(baton, buffer, &length));
        ASSERT_NE(failure, nullptr);
        EXPECT_EQ(failure->name(), "LuSVNException");
        EXPECT_EQ(failure->status(), 20014);
        EXPECT_EQ(failure->reason(), "Unable to read data from input stream");
    }

    const struct {
        const char* label;
        std::shared_ptr<LuSVNOutputStream> output;
    } outputs[] = {
        {"returns -1", std::make_shared<FailingOutput>(false)},
        {"throws", std::make_shared<FailingOutput>(true)},
        {"bad std::ostream", LuSVNStdOutputStream::streamWithStream(badOutput)},
    };
    for (const auto& c : outputs) {
        SCOPED_TRACE(c.label);
        void* baton = batonOf(LuSVNAdaptOutputStream(c.output, frame.pool()));
        std::size_t length = 4;
        auto failure = failureOf(LuSVNAdaptStreamWrite(baton, "data", &length));
        ASSERT_NE(failure, nullptr);
        EXPECT_EQ(failure->name(), "LuSVNException");
        EXPECT_EQ(failure->status(), 20014);
        EXPECT_EQ(failure->reason(), "Unable to write data to output stream");
    }
}

TEST_F(StreamTest, ClosingReleasesTheApplicationStreamButLeavesItOpen)
{
    tessera_test::TemporaryDirectory directory;
    const std::string path = directory / "out.txt";
    std::ofstream file(path, std::ios::binary);
    auto output = LuSVNStdOutputStream::streamWithStream(file);
    svn_stream_t* stream = LuSVNAdaptOutputStream(output, frame.pool());
    EXPECT_EQ(output.use_count(), 2);

    void* baton = batonOf(stream);
    std::size_t length = 5;
    ASSERT_EQ(LuSVNAdaptStreamWrite(baton, "abcde", &length), nullptr);
    EXPECT_EQ(length, 5u);
    EXPECT_EQ(output.use_count(), 2);

    ASSERT_EQ(LuSVNEntry<112>()(stream), nullptr);
    EXPECT_EQ(output.use_count(), 1);
    // The owner's stream is neither closed nor in a failed state.
    EXPECT_TRUE(file.is_open());
    EXPECT_TRUE(file.good());
    file << "fgh";
    file.close();
    std::ifstream written(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(written), {}), "abcdefgh");

    // A closed adapter neither writes nor crashes.
    length = 3;
    auto failure = failureOf(LuSVNAdaptStreamWrite(baton, "xyz", &length));
    ASSERT_NE(failure, nullptr);
    EXPECT_EQ(failure->status(), 20014);

    std::istringstream text("abc");
    auto input = LuSVNStdInputStream::streamWithStream(text);
    svn_stream_t* inputStream = LuSVNAdaptInputStream(input, frame.pool());
    EXPECT_EQ(input.use_count(), 2);
    ASSERT_EQ(LuSVNEntry<112>()(inputStream), nullptr);
    EXPECT_EQ(input.use_count(), 1);
    EXPECT_EQ(text.tellg(), 0);
}

TEST_F(StreamTest, UnclosedStreamIsReleasedWithItsPool)
{
    std::istringstream text("abc");
    std::ostringstream sink;
    auto input = LuSVNStdInputStream::streamWithStream(text);
    auto output = LuSVNStdOutputStream::streamWithStream(sink);
    apr_pool_t* pool = subpool();
    LuSVNAdaptInputStream(input, pool);
    LuSVNAdaptOutputStream(output, pool);
    EXPECT_EQ(input.use_count(), 2);
    EXPECT_EQ(output.use_count(), 2);
    destroy(pool);
    EXPECT_EQ(input.use_count(), 1);
    EXPECT_EQ(output.use_count(), 1);

    // Closed first, then the pool goes: released once, no double release.
    pool = subpool();
    svn_stream_t* stream = LuSVNAdaptInputStream(input, pool);
    ASSERT_EQ(LuSVNEntry<112>()(stream), nullptr);
    EXPECT_EQ(input.use_count(), 1);
    destroy(pool);
    EXPECT_EQ(input.use_count(), 1);
}

TEST_F(StreamTest, NullArgumentsAreRefused)
{
    std::istringstream text("abc");
    const struct {
        std::function<void()> call;
        const char* condition;
    } cases[] = {
        {[&] { LuSVNAdaptInputStream(nullptr, frame.pool()); }, "inputStream != nil"},
        {[&] { LuSVNAdaptOutputStream(nullptr, frame.pool()); },
         "outputStream != nil"},
        {[&] { LuSVNAdaptInputStream(LuSVNStdInputStream::streamWithStream(text), nullptr); },
         "pool != nil"},
    };
    for (const auto& c : cases)
        tessera_test::expectParameterAssertion(c.call, c.condition);
}

// Subversion writing file contents into an adapted stream (svn_client_cat2).
class CatTest : public StreamTest {
protected:
    void SetUp() override
    {
        url = tessera_test::makeRepository(directory / "repository");
        tessera_test::writeFile(directory / "file.txt", contents);
        const auto result = tessera_test::svn({"import", "-q", "-m", "add", directory / "file.txt", url + "/file.txt"});
        ASSERT_EQ(result.status, 0) << result.output;
        ASSERT_EQ(LuSVNEntry<47>()(&context, frame.pool()), nullptr);
        apr_array_header_t* providers = LuSVNEntry<11>()(frame.pool(), 1, sizeof(svn_auth_provider_object_t*));
        LuSVNEntry<89>()(&context->auth_baton, providers, frame.pool());
    }

    svn_error_t* cat(svn_stream_t* out)
    {
        svn_opt_revision_t peg{};
        peg.kind = svn_opt_revision_unspecified;
        svn_opt_revision_t head{};
        head.kind = svn_opt_revision_head;
        return LuSVNEntry<40>()(out, (url + "/file.txt").c_str(), &peg, &head, context, frame.pool());
    }

    tessera_test::TemporaryDirectory directory;
    std::string url;
    const std::string contents = std::string(100000, 'x') + "\nlast line\n";
    svn_client_ctx_t* context = nullptr;
};

TEST_F(CatTest, SubversionWritesThroughTheAdapter)
{
    std::ostringstream text;
    auto output = LuSVNStdOutputStream::streamWithStream(text);
    LuSVNThrowIfError(cat(LuSVNAdaptOutputStream(output, frame.pool())));
    EXPECT_EQ(text.str(), contents);
}

TEST_F(CatTest, FailingOutputStopsSubversionWithTheAdaptersError)
{
    svn_error_t* error = cat(LuSVNAdaptOutputStream(std::make_shared<FailingOutput>(true), frame.pool()));
    try {
        LuSVNThrowIfError(error);
        FAIL() << "nothing thrown";
    } catch (const LuSVNException& caught) {
        EXPECT_EQ(caught.name(), "LuSVNException");
        EXPECT_EQ(caught.status(), 20014);
        EXPECT_EQ(caught.reason(), "Unable to write data to output stream");
    }
}

}  // namespace
