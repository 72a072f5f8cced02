#include "DiffOutput.h"

#include <tessera/LuSVNStreams.h>
#include <tessera/LuSVNURL.h>

#include <cstdio>
#include <functional>
#include <string>

#include "HistoryOptions.h"
#include "Operation.h"
#include "XMLText.h"

namespace {

// Passes the text on to standard output line by line, taking `prefix` off
// the path of "Index: PATH (deleted)" lines. Written from the library's
// thread: failures are answered, never thrown.
class DeletedHeaderFilter : public LuSVNOutputStream {
public:
    explicit DeletedHeaderFilter(std::string prefix) : prefix_("Index: " + std::move(prefix)) {}

    long write(const std::uint8_t* buffer, std::size_t length) override
    {
        pending_.append(reinterpret_cast<const char*>(buffer), length);
        std::size_t start = 0;
        for (std::size_t end; (end = pending_.find('\n', start)) != std::string::npos; start = end + 1) {
            std::string_view line(pending_.data() + start, end + 1 - start);
            if (line.starts_with(prefix_) && line.ends_with(" (deleted)\n")) {
                if (!put("Index: "))
                    return -1;
                line.remove_prefix(prefix_.size());
            }
            if (!put(line))
                return -1;
        }
        pending_.erase(0, start);
        return static_cast<long>(length);
    }

    // The text after the last line break, on the calling thread.
    void finish()
    {
        writeOutput(pending_);
        pending_.clear();
    }

private:
    static bool put(std::string_view text)
    {
        return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    }

    std::string prefix_;
    std::string pending_;
};

char kindCharacter(LuSVNDiffSummaryKind kind)
{
    switch (kind) {
    case LuSVNDiffSummaryKindAdded: return 'A';
    case LuSVNDiffSummaryKindModified: return 'M';
    case LuSVNDiffSummaryKindDeleted: return 'D';
    default: return ' ';
    }
}

const char* nodeKindWord(LuSVNNodeKind kind)
{
    switch (kind) {
    case LuSVNNodeKindFile: return "file";
    case LuSVNNodeKindDirectory: return "dir";
    case LuSVNNodeKindNone: return "none";
    default: return "unknown";
    }
}

// The item's path as svn shows it: below a URL escaped, below "." alone.
std::string shownPath(const std::string& target, const std::string& path)
{
    if (path.empty())
        return target;
    if (isURL(target))
        return commandLineURL(target)->pathByNormalizingAndAddingComponent(path)->string();
    return target == "." ? path : target + "/" + path;
}

}  // namespace

namespace {

// Runs a unified diff into standard output, its paths relative to the
// current directory when asked.
void writeUnifiedDiff(bool relativeToCurrentDirectory,
                      const std::function<void(const LuSVNNode::Path&, const std::shared_ptr<LuSVNOutputStream>&)>& diff)
{
    const LuSVNNode::Path relativeTo = relativeToCurrentDirectory ? LuSVNNode::Path(targetPath(".")) : nullptr;
    auto output = std::make_shared<DeletedHeaderFilter>(relativeToCurrentDirectory ? absoluteTargetPath(".") + "/"
                                                                                   : std::string());
    diff(relativeTo, output);
    output->finish();
}

}  // namespace

void writeLocationDiff(const LuSVNNode::Path& originalPath, const LuSVNDiff::Revision& originalRevision,
                       const LuSVNNode::Path& modifiedPath, const LuSVNDiff::Revision& modifiedRevision,
                       bool relativeToCurrentDirectory, const LuSVNDiffOptions& options,
                       const std::shared_ptr<LuSVNContext>& context)
{
    writeUnifiedDiff(relativeToCurrentDirectory, [&](const LuSVNNode::Path& relativeTo, const auto& output) {
        LuSVNDiff::compareOriginalAtPath(originalPath, originalRevision, modifiedPath, modifiedRevision, relativeTo,
                                         output, options, context);
    });
}

void writePegDiff(const LuSVNNode::Path& path, const LuSVNDiff::Revision& pegRevision,
                  const LuSVNDiff::Revision& startRevision, const LuSVNDiff::Revision& endRevision,
                  bool relativeToCurrentDirectory, const LuSVNDiffOptions& options,
                  const std::shared_ptr<LuSVNContext>& context)
{
    writeUnifiedDiff(relativeToCurrentDirectory, [&](const LuSVNNode::Path& relativeTo, const auto& output) {
        LuSVNDiff::compareAtPath(path, pegRevision, startRevision, endRevision, relativeTo, output, options,
                                 context);
    });
}

void writeLocationSummary(const LuSVNNode::Path& originalPath, const LuSVNDiff::Revision& originalRevision,
                          const LuSVNNode::Path& modifiedPath, const LuSVNDiff::Revision& modifiedRevision,
                          const std::string& shownTarget, bool xml, const LuSVNDiffOptions& options,
                          const std::shared_ptr<LuSVNContext>& context)
{
    const auto print = [&](const LuSVNDiffSummary& item) {
        const std::string path = shownPath(shownTarget, item.path());
        std::string out;
        if (xml) {
            appendXMLOpenTag(out, "path",
                             {{"item", LuSVNDiffSummary::wordFromKind(item.kind())},
                              {"props", item.propertiesChanged() ? "modified" : "none"},
                              {"kind", nodeKindWord(item.nodeKind())}},
                             true);
            appendXMLData(out, path);
            out += "</path>\n";
        } else {
            out = std::string(1, kindCharacter(item.kind())) + (item.propertiesChanged() ? 'M' : ' ') + "      " +
                  path + "\n";
        }
        writeOutput(out);
    };
    LuSVNDiff::summarizeOriginalAtPath(originalPath, originalRevision, modifiedPath, modifiedRevision, options,
                                       print, context);
}
