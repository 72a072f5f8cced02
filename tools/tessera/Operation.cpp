#include "Operation.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <unistd.h>

#include "Authentication.h"
#include "Messages.h"
#include "Options.h"
#include "TerminalPrompt.h"

namespace {

namespace fs = std::filesystem;

// The backend of the working copy that holds the path: the one of its
// nearest directory that is in a working copy (an unversioned or missing
// target lies in its parent's); the newest one outside working copies, whose
// operation then says what is wrong, in Subversion's words.
LuSVNVersion versionForPath(const std::string& path)
{
    std::error_code error;
    for (fs::path directory = path; directory.has_relative_path(); directory = directory.parent_path())
        if (fs::is_directory(directory, error) &&
            LuSVNNode::formatVersionForWorkingCopyAtPath(directory.string()) != 0)
            return LuSVNNode::versionForWorkingCopyAtPath(directory.string());
    return LuSVNBundleLoader::sharedInstance()->newestVersion().value_or(LuSVNVersion::defaultVersion());
}

std::shared_ptr<LuSVNContext> makeContext(const LuSVNVersion& version)
{
    const TesseraGlobalSettings& settings = tesseraGlobalSettings();
    auto context = LuSVNContext::contextWithBundle(LuSVNBundleLoader::sharedInstance()->bundleForVersion(version), {},
                                                   settings.configDir);
    setUpContext(*context, settings);
    return context;
}

}  // namespace

TesseraOperation::TesseraOperation(const LuSVNVersion& version, Settings settings)
    : progress_(stderr, settings.progress && !settings.quiet && isatty(STDERR_FILENO)),
      context_(makeContext(version))
{
    if (!settings.quiet) {
        notifier_ = std::make_shared<TesseraNotifier>();
        notifier_->setBeforePrinting([this] { progress_.erase(); });
        context_->setNotificationHandler(notifier_);
    }
    // A question for credentials starts on a line of its own.
    TesseraTerminalPrompt::shared()->setBeforePrompting([this] { progress_.erase(); });
    if (settings.progress && !settings.quiet)
        context_->setProgressHandler([this](const LuSVNProgress& progress) {
            progress_.update(progress.bytes, progress.items, TesseraProgressLine::Clock::now());
        });
}

TesseraOperation::~TesseraOperation()
{
    TesseraTerminalPrompt::shared()->setBeforePrompting(nullptr);
}

TesseraOperation::TesseraOperation(const std::string& workingCopyPath, Settings settings)
    : TesseraOperation(versionForPath(absoluteTargetPath(workingCopyPath)), settings)
{
}

void TesseraOperation::concludeUpdate() const
{
    if (!notifier_)
        return;
    notifier_->printConflictSummary();
    if (notifier_->hadExternalsError())
        LuSVNException::exceptionWithReason("Failure occurred processing one or more externals definitions", 205011)
            ->raise();
}

void addUpdateOptions(CLI::App& command, const std::shared_ptr<TesseraUpdateSettings>& settings)
{
    addRevisionOption(command, [settings](auto revision) { settings->revision = std::move(revision); });
    addFlag(command, "-N,--non-recursive", settings->nonRecursive, "obsolete; same as --depth=files");
    addDepthOption(command, [settings](const std::string& word) { settings->depth = word; });
    addSetDepthOption(command, [settings](const std::string& word) { settings->setDepth = word; });
    addFlag(command, "-q,--quiet", settings->quiet, "print nothing, or only summary information");
    addFlag(command, "--force", settings->force, "handle unversioned obstructions as changes");
    addFlag(command, "--ignore-externals", settings->ignoreExternals, "ignore externals definitions");
    addArguments(command, settings->arguments);
    command.final_callback([settings] {
        if (settings->depth && settings->setDepth)
            LuSVNException::exceptionWithReason("--depth and --set-depth are mutually exclusive",
                                                TesseraArgumentParsingError)
                ->raise();
    });
}

std::string absoluteTargetPath(const std::string& target)
{
    std::string path = fs::absolute(target.empty() ? "." : target).lexically_normal().string();
    if (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

LuSVNNode::LocalPath targetPath(const std::string& target)
{
    return LuSVNLocalPath::pathWithString(absoluteTargetPath(target));
}

bool isURL(const std::string& text)
{
    const auto colon = text.find("://");
    return colon != std::string::npos && colon > 0 &&
           text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+.-") == colon;
}

LuSVNNode::URLPath commandLineURL(const std::string& text)
{
    static const std::string unsafe = " \"<>\\^`{|}";
    std::string escaped;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7f || unsafe.find(c) != std::string::npos) {
            char code[4];
            std::snprintf(code, sizeof code, "%%%02X", byte);
            escaped += code;
        } else {
            escaped += c;
        }
    }
    return LuSVNURL::URLWithString(escaped);
}

std::vector<std::string> localTargets(const std::vector<std::string>& arguments,
                                      const std::optional<std::string>& targetsFile, bool implicitDot)
{
    std::vector<std::string> targets = arguments;
    if (targetsFile)
        for (std::string& target : readTargetsFile(*targetsFile))
            targets.push_back(std::move(target));
    for (const std::string& target : targets)
        if (isURL(target))
            LuSVNException::exceptionWithReason("'" + target + "' is not a local path", TesseraArgumentParsingError)
                ->raise();
    if (targets.empty() && implicitDot)
        targets.emplace_back(".");
    return targets;
}

TesseraTargetFailures::TesseraTargetFailures(bool quiet, std::vector<std::pair<int, std::string>> summaries)
    : quiet_(quiet), summaries_(std::move(summaries))
{
}

void TesseraTargetFailures::attempt(const std::function<void()>& work)
{
    try {
        work();
    } catch (const LuSVNException& failure) {
        const int code = static_cast<int>(failure.status());
        const bool listed = std::any_of(summaries_.begin(), summaries_.end(),
                                        [code](const auto& summary) { return summary.first == code; });
        if (!listed)
            throw;
        if (std::find(seen_.begin(), seen_.end(), code) == seen_.end())
            seen_.push_back(code);
        if (!quiet_)
            printWarning(code, failure.reason());
    }
}

void TesseraTargetFailures::raiseIfAny() const
{
    if (seen_.empty())
        return;
    // Each kind wraps the error before it: the last seen prints first.
    std::vector<std::pair<int, std::string>> links;
    for (auto code = seen_.rbegin(); code != seen_.rend(); ++code)
        for (const auto& [listed, summary] : summaries_)
            if (listed == *code)
                links.emplace_back(200009, summary);
    links.emplace_back(200009, "Illegal target for the requested operation");
    throwErrorChain(links);
}

std::pair<std::string, std::shared_ptr<const LuSVNRevisionSpec>> splitPegRevision(const std::string& target)
{
    const auto at = target.rfind('@');
    // An "@" inside a URL's or path's earlier part is part of the name.
    if (at == std::string::npos || target.find('/', at) != std::string::npos)
        return {target, nullptr};
    const std::string peg = target.substr(at + 1);
    if (peg.empty())
        return {target.substr(0, at), nullptr};
    try {
        return {target.substr(0, at), parseRevision(peg)};
    } catch (const LuSVNException&) {
        LuSVNException::exceptionWithReason("Syntax error parsing peg revision '" + peg + "'",
                                            TesseraArgumentParsingError)
            ->raise();
    }
    return {};
}
