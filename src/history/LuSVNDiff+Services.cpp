#include <tessera/LuSVNContext.h>
#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNStreams.h>

#include <unicode/unistr.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNTrace.h"

namespace {

// svn_diff's header encoding: the locale's character set.
const char* const LuSVNLocaleCharset = reinterpret_cast<const char*>(1);

struct DiffBaton {
    LuSVNDiff& diff;
    std::exception_ptr pending;
};

void appendSection(void* baton, LuSVNDiffSectionType type, apr_off_t originalStart, apr_off_t originalLength,
                   apr_off_t modifiedStart, apr_off_t modifiedLength, apr_off_t latestStart, apr_off_t latestLength)
{
    const auto range = [](apr_off_t start, apr_off_t length) {
        return LuSVNLineRange{static_cast<std::uint64_t>(start), static_cast<std::uint64_t>(length)};
    };
    static_cast<DiffBaton*>(baton)->diff.addSection(
        LuSVNDiffSection::sectionOfType(type, range(originalStart, originalLength), range(modifiedStart, modifiedLength),
                                        range(latestStart, latestLength)));
}

svn_error_t* LuTesseraCommon(void* baton, apr_off_t originalStart, apr_off_t originalLength, apr_off_t modifiedStart,
                             apr_off_t modifiedLength, apr_off_t latestStart, apr_off_t latestLength)
{
    return LuSVNGuardCallback(static_cast<DiffBaton*>(baton)->pending, [&]() -> svn_error_t* {
        appendSection(baton, LuSVNDiffSectionCommon, originalStart, originalLength, modifiedStart, modifiedLength,
                      latestStart, latestLength);
        return nullptr;
    });
}

svn_error_t* LuTesseraDiffModified(void* baton, apr_off_t originalStart, apr_off_t originalLength,
                                   apr_off_t modifiedStart, apr_off_t modifiedLength, apr_off_t latestStart,
                                   apr_off_t latestLength)
{
    return LuSVNGuardCallback(static_cast<DiffBaton*>(baton)->pending, [&]() -> svn_error_t* {
        appendSection(baton, LuSVNDiffSectionDiffModified, originalStart, originalLength, modifiedStart,
                      modifiedLength, latestStart, latestLength);
        return nullptr;
    });
}

[[noreturn]] void raiseNoSuchEntry(const std::string& reason)
{
    throw LuSVNNoSuchEntryException(reason);
}

// Removes the files when it goes.
struct TemporaryFiles {
    std::vector<LuSVNDiff::LocalPath> paths;
    TemporaryFiles() = default;
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;
    ~TemporaryFiles()
    {
        for (const auto& path : paths)
            std::remove(path->string().c_str());
    }
};

// The files a comparison reads, UTF-16 ones replaced by UTF-8 copies. The
// copies live in a member so that they go on every path, also when the
// second file fails after the first was copied.
class ComparedFiles {
public:
    ComparedFiles(const LuSVNDiff::LocalPath& original, const LuSVNDiff::LocalPath& modified)
    {
        original_ = readable(original);
        modified_ = readable(modified);
    }
    ComparedFiles(const ComparedFiles&) = delete;
    ComparedFiles& operator=(const ComparedFiles&) = delete;

    const LuSVNDiff::LocalPath& original() const { return original_; }
    const LuSVNDiff::LocalPath& modified() const { return modified_; }

private:
    LuSVNDiff::LocalPath readable(const LuSVNDiff::LocalPath& path)
    {
        if (LuSVNDiff::encodingOfFile(path) != LuSVNTextEncoding::UTF16)
            return path;
        copies_.paths.push_back(LuSVNDiff::convertFromUTF16ToUTF8(path));
        return copies_.paths.back();
    }

    TemporaryFiles copies_;
    LuSVNDiff::LocalPath original_;
    LuSVNDiff::LocalPath modified_;
};

// svn_diff_file_diff_2 of the files as compared, in the frame's pool.
svn_diff_t* fileDiff(const ComparedFiles& files, const LuSVNDiffOptions& options, apr_pool_t* pool)
{
    svn_diff_t* result = nullptr;
    LuSVNThrowIfError(LuSVNEntry<96>()(&result, files.original()->SVNRepresentationInPool(pool),
                                       files.modified()->SVNRepresentationInPool(pool),
                                       LuSVNDiffOptions::convertOptions(options, pool), pool));
    return result;
}

void assertFiles(const LuSVNDiff::LocalPath& originalFilePath, const LuSVNDiff::LocalPath& modifiedFilePath,
                 const LuSVNDiff::Context& context)
{
    LUSVN_PARAMETER_ASSERT(originalFilePath != nullptr, "originalFilePath != nil");
    LUSVN_PARAMETER_ASSERT(modifiedFilePath != nullptr, "modifiedFilePath != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
}

// Closes an APR file at the end of the scope.
struct OpenFile {
    apr_file_t* file = nullptr;
    ~OpenFile()
    {
        if (file)
            LuSVNEntry<7>()(file);
    }
};

// Copies what Subversion writes into a pipe to the application's stream on a
// thread of its own: Subversion's diff writes to an APR file only, and a
// tree's diff must not be held whole on its way to the stream.
class PipeToStream {
public:
    explicit PipeToStream(std::shared_ptr<LuSVNOutputStream> stream)
    {
        if (pipe2(descriptors_, O_CLOEXEC) != 0)
            throw LuSVNException("Failed to create diff output file");
        copier_ = std::thread([this, target = std::move(stream)] { copy(*target); });
    }
    ~PipeToStream()
    {
        closeWriteEnd();
        if (copier_.joinable())
            copier_.join();
        ::close(descriptors_[0]);
    }
    PipeToStream(const PipeToStream&) = delete;
    PipeToStream& operator=(const PipeToStream&) = delete;

    /// A name under which the write end opens again.
    std::string writePath() const { return "/dev/fd/" + std::to_string(descriptors_[1]); }
    /// Once Subversion has closed its file: waits for the last bytes and
    /// raises what the stream failed with.
    void finish()
    {
        closeWriteEnd();
        copier_.join();
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    void closeWriteEnd()
    {
        if (descriptors_[1] >= 0)
            ::close(descriptors_[1]);
        descriptors_[1] = -1;
    }

    // Reads to the end even after the stream failed, so the writer never blocks.
    void copy(LuSVNOutputStream& stream)
    {
        char buffer[65536];
        for (;;) {
            const ssize_t count = ::read(descriptors_[0], buffer, sizeof buffer);
            if (count == 0 || (count < 0 && errno != EINTR))
                return;
            if (count < 0 || failure_)
                continue;
            try {
                for (ssize_t done = 0; done < count;) {
                    const long written = stream.write(reinterpret_cast<const std::uint8_t*>(buffer) + done,
                                                      static_cast<std::size_t>(count - done));
                    if (written <= 0)
                        throw LuSVNException("Unable to write data to output stream");
                    done += written;
                }
            } catch (...) {
                failure_ = std::current_exception();
            }
        }
    }

    int descriptors_[2] = {-1, -1};
    std::exception_ptr failure_;
    std::thread copier_;
};

void traceLocationDiff(const LuSVNDiff::Path& originalPath, const LuSVNDiff::Revision& originalRevision,
                       const LuSVNDiff::Path& modifiedPath, const LuSVNDiff::Revision& modifiedRevision,
                       const LuSVNDiff::Path& relativeToPath, const std::string& output,
                       const LuSVNDiff::Context& context)
{
    LUSVN_PARAMETER_ASSERT(originalPath != nullptr, "originalPath != nil");
    LUSVN_PARAMETER_ASSERT(originalRevision != nullptr, "originalRevision != nil");
    LUSVN_PARAMETER_ASSERT(modifiedPath != nullptr, "modifiedPath != nil");
    LUSVN_PARAMETER_ASSERT(modifiedRevision != nullptr, "modifiedRevision != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDiff",
                "compareOriginalAtPath:revision:withModifiedAtPath:revision:relativeToPath:writingOutputToFileAtPath:"
                "options:withContext",
                {"originalPath", originalPath->string()}, {"originalRevision", originalRevision->description()},
                {"modifiedPath", modifiedPath->string()}, {"modifiedRevision", modifiedRevision->description()},
                {"relativeToPath", relativeToPath ? relativeToPath->string() : "(null)"}, {"path", output},
                {"context", context->description()});
}

// The options svn diff takes with -x, as Subversion's diff calls read them.
apr_array_header_t* extensionOptions(const LuSVNDiffOptions& options, apr_pool_t* pool)
{
    apr_array_header_t* diffOptions = LuSVNEntry<11>()(pool, 0, sizeof(const char*));
    const auto addOption = [&](const char* option) {
        *static_cast<const char**>(LuSVNEntry<12>()(diffOptions)) = option;
    };
    if (options.whitespaceCompareBehavior() == 1)
        addOption("--ignore-space-change");
    else if (options.whitespaceCompareBehavior() == 2)
        addOption("--ignore-all-space");
    if (options.ignoreEOLStyle())
        addOption("--ignore-eol-style");
    return diffOptions;
}

// Where an external diff program's complaints go, as svn sends them.
svn_stream_t* errorStream(apr_pool_t* pool)
{
    return LuSVNAdaptOutputStream(LuSVNStdOutputStream::streamWithStream(std::cerr), pool);
}

// Subversion 1.8's diff writes to a Subversion stream, so the application's
// stream is written on the calling thread.
void writeNewerLocationDiff(const LuSVNDiff::Path& originalPath, const LuSVNDiff::Revision& originalRevision,
                            const LuSVNDiff::Path& modifiedPath, const LuSVNDiff::Revision& modifiedRevision,
                            const LuSVNDiff::Path& relativeToPath, const std::shared_ptr<LuSVNOutputStream>& output,
                            const LuSVNDiffOptions& options, const LuSVNDiff::Context& context)
{
    traceLocationDiff(originalPath, originalRevision, modifiedPath, modifiedRevision, relativeToPath, "(stream)",
                      context);
    LuSVNBackendFrame frame(context->bundle());
    if (!tessera_private::LuSVNCurrentHasExtensionEntryPoint(4))
        throw LuSVNException(
            "Git diffs, properties-only diffs and copies shown as additions require 1.8 or greater");
    apr_pool_t* pool = frame.pool();
    const svn_opt_revision_t revision1 = originalRevision->SVNRevision();
    const svn_opt_revision_t revision2 = modifiedRevision->SVNRevision();
    svn_stream_t* stream = LuSVNAdaptOutputStream(output, pool);
    context->throwIfError(LuSVNExtensionEntry<4>()(
        extensionOptions(options, pool), originalPath->SVNRepresentationInPool(pool), &revision1,
        modifiedPath->SVNRepresentationInPool(pool), &revision2,
        relativeToPath ? relativeToPath->SVNRepresentationInPool(pool) : nullptr,
        options.recursive() ? svn_depth_infinity : svn_depth_files, !options.noticeAncestry(), false,
        !options.diffDeleted(), options.showCopiesAsAdds(), false, false, options.propertiesOnly(),
        options.useGitDiffFormat(), LuSVNLocaleCharset, stream, errorStream(pool), nullptr, context->ctx(), pool));
    LuSVNThrowIfError(LuSVNEntry<112>()(stream));
}

void writeLocationDiff(const LuSVNDiff::Path& originalPath, const LuSVNDiff::Revision& originalRevision,
                       const LuSVNDiff::Path& modifiedPath, const LuSVNDiff::Revision& modifiedRevision,
                       const LuSVNDiff::Path& relativeToPath, const std::string& outputPath,
                       const LuSVNDiffOptions& options, const LuSVNDiff::Context& context)
{
    traceLocationDiff(originalPath, originalRevision, modifiedPath, modifiedRevision, relativeToPath, outputPath,
                      context);
    LuSVNBackendFrame frame(context->bundle());
    apr_pool_t* pool = frame.pool();
    apr_array_header_t* diffOptions = extensionOptions(options, pool);
    const svn_opt_revision_t revision1 = originalRevision->SVNRevision();
    const svn_opt_revision_t revision2 = modifiedRevision->SVNRevision();
    const char* path1 = originalPath->SVNRepresentationInPool(pool);
    const char* path2 = modifiedPath->SVNRepresentationInPool(pool);

    OpenFile output;
    const apr_status_t status = LuSVNEntry<8>()(&output.file, outputPath.c_str(), 0x16, 0xFFF, pool);
    if (status != 0) {
        LuSVNErrorDictionary userInfo;
        userInfo.message = "Failed to create diff output file";
        userInfo.status = status;
        throw LuSVNException("Failed to create diff output file", userInfo);
    }
    // The process's standard error: never closed, closing it would close
    // descriptor 2 for the whole process.
    apr_file_t* errors = nullptr;
    LuSVNEntry<9>()(&errors, pool);

    svn_error_t* error = nullptr;
    if (context->bundleVersion() >= LuSVNVersion(1, 5, 0, "")) {
        error = LuSVNEntry<50>()(diffOptions, path1, &revision1, path2, &revision2,
                                 relativeToPath ? relativeToPath->SVNRepresentationInPool(pool) : nullptr,
                                 options.recursive() ? svn_depth_infinity : svn_depth_files, !options.noticeAncestry(),
                                 !options.diffDeleted(), false, LuSVNLocaleCharset, output.file, errors, nullptr,
                                 context->ctx(), pool);
    } else {
        if (relativeToPath)
            throw LuSVNException("relativeToPath requires 1.5 or greater");
        error = LuSVNEntry<49>()(diffOptions, path1, &revision1, path2, &revision2, options.recursive(),
                                 !options.noticeAncestry(), !options.diffDeleted(), false, LuSVNLocaleCharset,
                                 output.file, errors, context->ctx(), pool);
    }
    context->throwIfError(error);
}


}  // namespace

LuSVNTextEncoding LuSVNDiff::encodingOfFile(const LocalPath& path)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    std::ifstream file(path->string(), std::ios::binary);
    if (!file)
        raiseNoSuchEntry("File not found at \"" + path->string() + "\"");
    unsigned char head[4] = {};
    file.read(reinterpret_cast<char*>(head), sizeof head);
    if (file.gcount() < 4)
        return LuSVNTextEncoding::UTF8;
    const bool bom = (head[0] == 0xFF && head[1] == 0xFE) || (head[0] == 0xFE && head[1] == 0xFF);
    return bom ? LuSVNTextEncoding::UTF16 : LuSVNTextEncoding::UTF8;
}

LuSVNDiff::LocalPath LuSVNDiff::convertFromUTF16ToUTF8(const LocalPath& path)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    std::ifstream input(path->string(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(input)), std::istreambuf_iterator<char>());
    if (!input.good() && !input.eof())
        raiseNoSuchEntry("Failed to convert \"" + path->string() + "\" from UTF-16 to UTF-8");
    // ICU's "UTF-16" reads the byte order from the mark and drops it.
    const icu::UnicodeString text(bytes.data(), static_cast<int32_t>(bytes.size()), "UTF-16");
    if (text.isBogus())
        raiseNoSuchEntry("Failed to convert \"" + path->string() + "\" from UTF-16 to UTF-8");
    std::string utf8;
    text.toUTF8String(utf8);

    const char* directory = std::getenv("TMPDIR");
    std::string name = std::string(directory && *directory ? directory : P_tmpdir) + "/tessera-utf8-XXXXXX";
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0)
        raiseNoSuchEntry("Failed to generate a temporary file name");
    const bool written = write(descriptor, utf8.data(), utf8.size()) == static_cast<ssize_t>(utf8.size());
    if (close(descriptor) != 0 || !written) {
        std::remove(name.c_str());
        raiseNoSuchEntry("Failed to write UTF-16 file to \"" + name + "\"");
    }
    return LuSVNLocalPath::pathWithString(name);
}

std::shared_ptr<LuSVNDiff> LuSVNDiff::compareOriginalFileAtPath(const LocalPath& originalFilePath,
                                                                const LocalPath& modifiedFilePath,
                                                                const Context& context)
{
    return compareOriginalFileAtPath(originalFilePath, modifiedFilePath, LuSVNDiffOptions::defaults(), context);
}

std::shared_ptr<LuSVNDiff> LuSVNDiff::compareOriginalFileAtPath(const LocalPath& originalFilePath,
                                                                const LocalPath& modifiedFilePath,
                                                                const LuSVNDiffOptions& options,
                                                                const Context& context)
{
    assertFiles(originalFilePath, modifiedFilePath, context);
    LUSVN_TRACE("LuSVNDiff", "compareOriginalFileAtPath:withModifiedFileAtPath:options:withContext",
                {"originalFilePath", originalFilePath->string()}, {"modifiedFilePath", modifiedFilePath->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const ComparedFiles files(originalFilePath, modifiedFilePath);
    svn_diff_t* fileDifferences = fileDiff(files, options, frame.pool());
    auto result = diff();
    DiffBaton baton{*result, nullptr};
    static const svn_diff_output_fns_t functions = {LuTesseraCommon, LuTesseraDiffModified, nullptr, nullptr,
                                                    nullptr};
    svn_error_t* error = LuSVNEntry<97>()(fileDifferences, &baton, &functions);
    if (baton.pending)
        LuSVNRethrowPending(baton.pending, error);
    LuSVNThrowIfError(error);
    return result;
}

void LuSVNDiff::compareOriginalFileAtPath(const LocalPath& originalFilePath,
                                          const std::optional<std::string>& originalHeader,
                                          const LocalPath& modifiedFilePath,
                                          const std::optional<std::string>& modifiedHeader,
                                          const std::shared_ptr<LuSVNOutputStream>& outputStream,
                                          const LuSVNDiffOptions& options, const Context& context)
{
    assertFiles(originalFilePath, modifiedFilePath, context);
    LUSVN_PARAMETER_ASSERT(outputStream != nullptr, "outputStream != nil");
    LUSVN_TRACE("LuSVNDiff",
                "compareOriginalFileAtPath:header:withModifiedFileAtPath:header:writingOutputToStream:options:"
                "withContext",
                {"originalFilePath", originalFilePath->string()}, {"modifiedFilePath", modifiedFilePath->string()},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    const ComparedFiles files(originalFilePath, modifiedFilePath);
    svn_diff_t* fileDifferences = fileDiff(files, options, frame.pool());
    svn_stream_t* stream = LuSVNAdaptOutputStream(outputStream, frame.pool());
    // The context lines come from the files as the caller named them.
    LuSVNThrowIfError(LuSVNEntry<98>()(stream, fileDifferences, originalFilePath->SVNRepresentationInPool(frame.pool()),
                                       modifiedFilePath->SVNRepresentationInPool(frame.pool()),
                                       originalHeader ? originalHeader->c_str() : nullptr,
                                       modifiedHeader ? modifiedHeader->c_str() : nullptr, LuSVNLocaleCharset,
                                       frame.pool()));
    LuSVNThrowIfError(LuSVNEntry<112>()(stream));
}

void LuSVNDiff::compareOriginalFileAtPath(const LocalPath& originalFilePath,
                                          const std::optional<std::string>& originalHeader,
                                          const LocalPath& modifiedFilePath,
                                          const std::optional<std::string>& modifiedHeader,
                                          const LocalPath& outputPath, const LuSVNDiffOptions& options,
                                          const Context& context)
{
    LUSVN_PARAMETER_ASSERT(outputPath != nullptr, "outputPath != nil");
    std::ofstream output(outputPath->string(), std::ios::binary | std::ios::trunc);
    if (!output)
        throw LuSVNException("Failed to create diff output file");
    compareOriginalFileAtPath(originalFilePath, originalHeader, modifiedFilePath, modifiedHeader,
                              LuSVNStdOutputStream::streamWithStream(output), options, context);
}

void LuSVNDiff::compareOriginalAtPath(const Path& originalPath, const Revision& originalRevision,
                                      const Path& modifiedPath, const Revision& modifiedRevision,
                                      const LocalPath& outputPath, const LuSVNDiffOptions& options,
                                      const Context& context)
{
    compareOriginalAtPath(originalPath, originalRevision, modifiedPath, modifiedRevision, nullptr, outputPath, options,
                          context);
}

void LuSVNDiff::compareOriginalAtPath(const Path& originalPath, const Revision& originalRevision,
                                      const Path& modifiedPath, const Revision& modifiedRevision,
                                      const Path& relativeToPath, const LocalPath& outputPath,
                                      const LuSVNDiffOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(outputPath != nullptr, "path != nil");
    if (options.needsNewerDiff()) {
        std::ofstream output(outputPath->string(), std::ios::binary | std::ios::trunc);
        if (!output)
            throw LuSVNException("Failed to create diff output file");
        writeNewerLocationDiff(originalPath, originalRevision, modifiedPath, modifiedRevision, relativeToPath,
                               LuSVNStdOutputStream::streamWithStream(output), options, context);
        return;
    }
    writeLocationDiff(originalPath, originalRevision, modifiedPath, modifiedRevision, relativeToPath,
                      outputPath->string(), options, context);
}

void LuSVNDiff::compareOriginalAtPath(const Path& originalPath, const Revision& originalRevision,
                                      const Path& modifiedPath, const Revision& modifiedRevision,
                                      const Path& relativeToPath,
                                      const std::shared_ptr<LuSVNOutputStream>& outputStream,
                                      const LuSVNDiffOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(outputStream != nullptr, "outputStream != nil");
    if (options.needsNewerDiff()) {
        writeNewerLocationDiff(originalPath, originalRevision, modifiedPath, modifiedRevision, relativeToPath,
                               outputStream, options, context);
        return;
    }
    PipeToStream pipe(outputStream);
    writeLocationDiff(originalPath, originalRevision, modifiedPath, modifiedRevision, relativeToPath,
                      pipe.writePath(), options, context);
    pipe.finish();
}

void LuSVNDiff::compareAtPath(const Path& path, const Revision& pegRevision, const Revision& startRevision,
                              const Revision& endRevision, const Path& relativeToPath,
                              const std::shared_ptr<LuSVNOutputStream>& outputStream,
                              const LuSVNDiffOptions& options, const Context& context)
{
    LUSVN_PARAMETER_ASSERT(path != nullptr, "path != nil");
    LUSVN_PARAMETER_ASSERT(pegRevision != nullptr, "pegRevision != nil");
    LUSVN_PARAMETER_ASSERT(startRevision != nullptr, "startRevision != nil");
    LUSVN_PARAMETER_ASSERT(endRevision != nullptr, "endRevision != nil");
    LUSVN_PARAMETER_ASSERT(outputStream != nullptr, "outputStream != nil");
    LUSVN_PARAMETER_ASSERT(context != nullptr, "context != nil");
    LUSVN_TRACE("LuSVNDiff", "compareAtPath:pegRevision:startRevision:endRevision:relativeToPath:outputStream:"
                "options:context",
                {"path", path->string()}, {"pegRevision", pegRevision->description()},
                {"startRevision", startRevision->description()}, {"endRevision", endRevision->description()},
                {"relativeToPath", relativeToPath ? relativeToPath->string() : "(null)"},
                {"context", context->description()});
    LuSVNBackendFrame frame(context->bundle());
    if (!tessera_private::LuSVNCurrentHasExtensionEntryPoint(5))
        throw LuSVNException("The peg form of the diff requires 1.8 or greater");
    apr_pool_t* pool = frame.pool();
    const svn_opt_revision_t peg = pegRevision->SVNRevision();
    const svn_opt_revision_t start = startRevision->SVNRevision();
    const svn_opt_revision_t end = endRevision->SVNRevision();
    svn_stream_t* stream = LuSVNAdaptOutputStream(outputStream, pool);
    context->throwIfError(LuSVNExtensionEntry<5>()(
        extensionOptions(options, pool), path->SVNRepresentationInPool(pool), &peg, &start, &end,
        relativeToPath ? relativeToPath->SVNRepresentationInPool(pool) : nullptr,
        options.recursive() ? svn_depth_infinity : svn_depth_files, !options.noticeAncestry(), false,
        !options.diffDeleted(), options.showCopiesAsAdds(), false, false, options.propertiesOnly(),
        options.useGitDiffFormat(), LuSVNLocaleCharset, stream, errorStream(pool), nullptr, context->ctx(), pool));
    LuSVNThrowIfError(LuSVNEntry<112>()(stream));
}
