#include "LockTargets.h"

#include "Messages.h"
#include "Operation.h"
#include "Options.h"

namespace {

// svn's code for targets that cannot be worked on together.
constexpr int IllegalTarget = 200009;

}  // namespace

TesseraLockTargets lockTargets(const CLI::App& command, const std::vector<std::string>& arguments,
                               const std::optional<std::string>& targetsFile)
{
    std::vector<std::string> texts = arguments;
    if (targetsFile)
        for (std::string& target : readTargetsFile(*targetsFile))
            texts.push_back(std::move(target));
    // Only files can be locked: no implicit ".".
    checkArgumentCount(command, texts, 1, static_cast<std::size_t>(-1));
    TesseraLockTargets targets;
    targets.urls = isURL(texts.front());
    for (const std::string& text : texts)
        if (isURL(text) != targets.urls)
            throwErrorChain({{TesseraArgumentParsingError, "Error parsing arguments"},
                             {IllegalTarget, "Cannot mix repository and working copy targets"}});
    for (const std::string& text : texts) {
        std::string target;
        bool peg = true;
        try {
            const auto split = splitPegRevision(text);
            target = split.first;
            peg = split.second != nullptr;
        } catch (const LuSVNException&) {
            // Any text after the "@" names a peg, readable or not.
        }
        if (peg)
            throwErrorChain({{IllegalTarget, "'" + text + "': a peg revision is not allowed here"}});
        targets.paths.push_back(targets.urls ? LuSVNNode::Path(commandLineURL(target))
                                             : LuSVNNode::Path(targetPath(target)));
    }
    return targets;
}

void runOnLockTargets(const TesseraLockTargets& targets, bool quiet,
                      const std::function<void(const std::shared_ptr<LuSVNContext>&)>& work)
{
    const TesseraOperation::Settings settings{quiet, false};
    std::optional<TesseraOperation> operation;
    if (targets.urls)
        operation.emplace(LuSVNBundleLoader::sharedInstance()->newestVersion().value_or(LuSVNVersion::defaultVersion()),
                          settings);
    else
        operation.emplace(targets.paths.front()->string(), settings);
    try {
        work(operation->context());
    } catch (const LuSVNException& failure) {
        if (failure.reason() != "One or more locks could not be obtained" &&
            failure.reason() != "One or more locks could not be released")
            throw;
        throwErrorChain({{IllegalTarget, failure.reason()}});
    }
}
