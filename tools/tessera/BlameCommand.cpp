// tessera blame FILE...: each line of a working file with the revision and
// author that last changed it, as svn blame prints it (or its XML); lines
// changed in the working file read "-" for both.
//
// With --local the committed blame (of the base text) is laid over the
// working file by the library's diff of the two: the same answer from the
// library's own overlay instead of Subversion's walk over the working file.
#include <tessera/LuSVNBlame.h>
#include <tessera/LuSVNDiff.h>
#include <tessera/LuSVNDiffOptions.h>
#include <tessera/LuSVNFile.h>
#include <tessera/LuSVNStreams.h>
#include <tessera/Tessera.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "Command.h"
#include "HistoryOptions.h"
#include "Messages.h"
#include "Operation.h"
#include "Options.h"
#include "RevisionDates.h"
#include "XMLText.h"

namespace {

struct Settings {
    std::vector<std::string> arguments;
    std::optional<std::string> revision;
    std::optional<std::string> extensions;
    bool verbose = false;
    bool xml = false;
    bool incremental = false;
    bool local = false;
    bool mergeHistory = false;
};

// The lines of a text without their line endings, as blame shows them.
std::vector<std::string> textLines(std::istream& text)
{
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<std::string> fileLines(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return textLines(file);
}

// svn's columns: the revision in six, the author in ten, "-" for a line
// changed in the working file; with merge history a "G " for lines merged
// from elsewhere, shown with the merged change and (-v) its path.
void appendLine(std::string& out, const LuSVNBlameSection& section, const std::string& line, const Settings& settings)
{
    const bool merged = settings.mergeHistory && section.isMerged();
    if (settings.mergeHistory)
        out += merged ? "G " : "  ";
    const auto revision = merged ? section.mergedOrigin()->revision : section.revision();
    const auto& author = merged ? section.mergedOrigin()->author : section.author();
    const auto& date = merged ? section.mergedOrigin()->date : section.date();
    char columns[32];
    const bool committed = revision >= 0;
    std::snprintf(columns, sizeof columns, committed ? "%6lld " : "     - ", static_cast<long long>(revision));
    out += columns;
    // svn cuts the author to ten bytes unless the line shows the date too.
    std::string authorText = committed && author ? *author : "-";
    if (!settings.verbose)
        authorText.resize(std::min<std::size_t>(authorText.size(), 10));
    if (authorText.size() < 10)
        out.append(10 - authorText.size(), ' ');
    out += authorText + " ";
    if (settings.verbose) {
        out += (committed && date ? humanDate(*date) : "                                           -") + " ";
        if (merged) {
            const auto& path = section.mergedOrigin()->path;
            out += path + std::string(path.size() < 14 ? 14 - path.size() : 0, ' ') + " ";
        }
    }
    out += line + "\n";
}

// svn's <commit> element of a revision.
void appendXMLCommit(std::string& out, std::int64_t revision, const std::optional<std::string>& author,
                     const std::optional<LuSVNBlameSection::Date>& date)
{
    appendXMLOpenTag(out, "commit", {{"revision", std::to_string(revision)}});
    if (author)
        appendXMLTaggedData(out, "author", *author);
    if (date)
        appendXMLTaggedData(out, "date", repositoryDate(*date));
    out += "</commit>\n";
}

void appendXMLEntry(std::string& out, const LuSVNBlameSection& section, std::uint64_t line)
{
    appendXMLOpenTag(out, "entry", {{"line-number", std::to_string(line + 1)}});
    if (section.revision() >= 0)
        appendXMLCommit(out, section.revision(), section.author(), section.date());
    if (const auto& origin = section.mergedOrigin()) {
        appendXMLOpenTag(out, "merged", {{"path", origin->path}});
        appendXMLCommit(out, origin->revision, origin->author, origin->date);
        out += "</merged>\n";
    }
    out += "</entry>\n";
}

void blameTarget(const Settings& settings, const std::string& target, const LuSVNDiffOptions& options)
{
    using Revision = LuSVNBlame::Revision;
    const auto [pathText, peg] = splitPegRevision(target);
    const bool url = isURL(pathText);
    // -r X is 1:X; without -r the working file (HEAD for a URL), or the peg.
    Revision start = LuSVNRevision::revisionWithNumber(1);
    auto endSpec = peg ? peg : url ? LuSVNRevisionSpec::HEAD() : LuSVNRevisionSpec::WORKING();
    if (settings.revision) {
        const auto [first, second] = parseRevisionRange(*settings.revision);
        start = second ? first->keyRevision() : start;
        endSpec = second ? second : first;
    }
    const Revision end = endSpec->keyRevision();
    const bool working = end->isEqual(LuSVNRevision::WORKING());
    const bool base = end->isEqual(LuSVNRevision::BASE());
    if (settings.local && !working)
        raiseArgumentError("--local shows the working file; it takes no end revision");

    const LuSVNNode::Path path = url ? LuSVNNode::Path(commandLineURL(pathText))
                                     : LuSVNNode::Path(targetPath(pathText));
    TesseraOperation operation(url ? pathText : absoluteTargetPath(pathText), {true, false});
    const auto& context = operation.context();
    const auto unspecified = peg ? peg->keyRevision() : LuSVNRevision::UNSPECIFIED();
    std::shared_ptr<LuSVNBlame> blame;
    std::vector<std::string> lines;
    if (settings.local) {
        const auto local = targetPath(pathText);
        blame = LuSVNBlame::blameForPath(path, unspecified, start, LuSVNRevision::BASE(), options, context,
                                         settings.mergeHistory);
        const auto pristine = LuSVNNode::BASEPathForNodeAtPath(local, context);
        blame->mergeDiff(*LuSVNDiff::compareOriginalFileAtPath(pristine, local, options, context), std::nullopt, -1,
                         std::nullopt);
        lines = fileLines(pathText);
    } else {
        blame = LuSVNBlame::blameForPath(path, unspecified, start, end, options, context, settings.mergeHistory);
        if (working) {
            lines = fileLines(pathText);
        } else if (base) {
            lines = fileLines(LuSVNNode::BASEPathForNodeAtPath(targetPath(pathText), context)->string());
        } else {
            // The text as Subversion blamed it: the target at the end revision.
            std::stringstream text;
            LuSVNFile::catRevision(endSpec, path, LuSVNStdOutputStream::streamWithStream(text), context);
            lines = textLines(text);
        }
    }

    std::string out;
    if (settings.xml)
        appendXMLOpenTag(out, "target", {{"path", pathText}});
    for (const auto& section : blame->blameSections()) {
        const auto& range = section->lines();
        for (std::uint64_t line = range.location; line < range.end() && line < lines.size(); ++line) {
            if (settings.xml)
                appendXMLEntry(out, *section, line);
            else
                appendLine(out, *section, lines[line], settings);
        }
        writeOutput(out);
        out.clear();
    }
    if (settings.xml)
        writeOutput("</target>\n");
}

int blame(const CLI::App& command, const Settings& settings)
{
    checkArgumentCount(command, settings.arguments, 1, static_cast<std::size_t>(-1));
    if (settings.xml && settings.verbose)
        throwUsageError(command.get_name(), TesseraArgumentParsingError, "'verbose' option invalid in XML mode");
    if (!settings.xml && settings.incremental)
        throwUsageError(command.get_name(), TesseraArgumentParsingError,
                        "'incremental' option only valid in XML mode");
    const LuSVNDiffOptions options = diffOptionsForExtensions(settings.extensions);
    const bool wrap = settings.xml && !settings.incremental;
    if (wrap)
        writeOutput("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<blame>\n");
    // A missing target is a warning, and the others are still blamed.
    bool missing = false;
    for (const std::string& target : settings.arguments) {
        try {
            blameTarget(settings, target, options);
        } catch (const LuSVNException& failure) {
            const auto code = failure.status();
            if (code != 155010 && code != 150000 && code != 160013)  // not found in the working copy or repository
                throw;
            printWarning(static_cast<int>(code), failure.reason());
            missing = true;
        }
    }
    if (wrap)
        writeOutput("</blame>\n");
    if (missing)
        LuSVNException::exceptionWithReason(
            "Could not perform blame on all targets because some targets don't exist", 200009)
            ->raise();
    return 0;
}

const TesseraCommand blameCommand(
    {"blame",
     {"praise", "annotate", "ann"},
     "Show when each line of a file was last changed, and by whom.",
     "blame TARGET[@REV]...",
     "Each line of the working file (of a URL at HEAD, or at the peg) is\n"
     "shown with the revision and author that last changed it; lines changed\n"
     "in the working file show \"-\". With -r N:M the lines of the file at M\n"
     "as they came to be from N on; -r M is -r 1:M. With -g, lines merged\n"
     "from another branch show the change on that branch, marked \"G\".\n"
     "\n"
     "With --local, the blame of the base text is laid over the working\n"
     "file by comparing the two, instead of by Subversion's walk."},
    [](CLI::App& command) -> TesseraCommand::Action {
        auto settings = std::make_shared<Settings>();
        addRevisionRangeOption(command, settings->revision);
        addFlag(command, "-v,--verbose", settings->verbose, "print the date of each line's revision too");
        addFlag(command, "--xml", settings->xml, "output in XML");
        addFlag(command, "--incremental", settings->incremental, "give output suitable for concatenation");
        addExtensionsOption(command, settings->extensions);
        addFlag(command, "--local", settings->local, "lay the committed blame over the working file's edits");
        addFlag(command, "-g,--use-merge-history", settings->mergeHistory,
                "use/display additional information from merge history");
        addArguments(command, settings->arguments);
        return [settings, &command] { return blame(command, *settings); };
    });

}  // namespace
