#include <tessera/LuSVNBundleLoader.h>
#include <tessera/LuSVNExternalDefinition.h>
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNStrings.h>

#include <cinttypes>
#include <ctime>
#include <functional>
#include <optional>

#include "LuSVNAssert.h"
#include "LuSVNBackendFrame.h"
#include "LuSVNObjectDescription.h"

static const LuSVNArchivableClassRegistrar<LuSVNExternalDefinition> registrar("LuSVNExternalDefinition");

namespace {

// Subversion reads the APR time 0 as no date, so a definition at exactly
// 1970-01-01T00:00:00Z names a revision the library cannot hold.
std::shared_ptr<const LuSVNRevision> revisionOfDefinition(const svn_opt_revision_t& revision)
{
    if (revision.kind == svn_opt_revision_date && revision.value.date == 0)
        throw LuSVNInvalidArgumentException("Time out of range: 0");
    return LuSVNRevision::revisionFromSVNRevision(&revision);
}

// Subversion's line splitting (svn_cstring_split on "\n\r", blanks chopped)
// and, within a line, APR's apr_tokenize_to_argv: the two steps that decide
// which syntax a line is in. Subversion's parser does not report it, so
// the lines are read again here, the same way.
bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

std::vector<std::string> definitionLines(std::string_view description)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start <= description.size()) {
        std::size_t end = description.find_first_of("\n\r", start);
        if (end == std::string_view::npos)
            end = description.size();
        std::string_view line = description.substr(start, end - start);
        while (!line.empty() && isSpace(line.front()))
            line.remove_prefix(1);
        while (!line.empty() && isSpace(line.back()))
            line.remove_suffix(1);
        if (!line.empty() && line.front() != '#')
            lines.emplace_back(line);
        start = end + 1;
    }
    return lines;
}

bool isSeparator(char c)
{
    return c == ' ' || c == '\t';
}

bool isEscapable(char c)
{
    return isSeparator(c) || c == '"' || c == '\'';
}

std::vector<std::string> lineTokens(std::string_view line)
{
    std::vector<std::string> tokens;
    std::size_t at = 0;
    while (true) {
        while (at < line.size() && isSeparator(line[at]))
            ++at;
        if (at >= line.size())
            return tokens;
        const char quote = line[at] == '"' || line[at] == '\'' ? line[at] : '\0';
        if (quote)
            ++at;
        std::string raw;
        while (at < line.size()) {
            if (line[at] == '\\' && at + 1 < line.size() && isEscapable(line[at + 1])) {
                raw += line.substr(at, 2);
                at += 2;
                continue;
            }
            if (quote ? line[at] == quote : isSeparator(line[at]))
                break;
            raw += line[at++];
        }
        ++at;
        // Every backslash escapes the character after it.
        std::string token;
        bool escaped = false;
        for (const char c : raw) {
            escaped = !escaped && c == '\\';
            if (!escaped)
                token += c;
        }
        tokens.push_back(std::move(token));
    }
}

// svn_path_is_url: a non-empty scheme without "/" followed by "://".
bool isURL(std::string_view text)
{
    const std::size_t colon = text.find_first_of(":/");
    return colon != std::string_view::npos && colon > 0 && text[colon] == ':' && text.substr(colon + 1, 2) == "//";
}

LuSVNExternalFormat formatOfLine(std::string_view line)
{
    std::vector<std::string> tokens = lineTokens(line);
    int revisionIndex = -1;
    for (int i = 0; i < 2 && i < static_cast<int>(tokens.size()); ++i)
        if (tokens[i].starts_with("-r")) {
            revisionIndex = i;
            tokens.erase(tokens.begin() + i, tokens.begin() + i + (tokens[i] == "-r" ? 2 : 1));
            break;
        }
    const bool firstIsURL = tokens.size() > 0 && isURL(tokens[0]);
    const bool secondIsURL = tokens.size() > 1 && isURL(tokens[1]);
    return revisionIndex == 0 || (revisionIndex == -1 && (firstIsURL || !secondIsURL)) ? LuSVNExternalFormat::New
                                                                                     : LuSVNExternalFormat::Old;
}

// A revision as svn_opt_parse_revision reads it back.
std::string revisionText(const LuSVNRevision& revision)
{
    const svn_opt_revision_t record = revision.SVNRevision();
    switch (record.kind) {
    case svn_opt_revision_number:
        return std::to_string(record.value.number);
    case svn_opt_revision_date: {
        const std::int64_t micro = record.value.date;
        const std::int64_t seconds = micro >= 0 ? micro / 1000000 : -((-micro + 999999) / 1000000);
        const std::time_t time = static_cast<std::time_t>(seconds);
        std::tm fields{};
        gmtime_r(&time, &fields);
        char text[64];
        std::snprintf(text, sizeof text, "{%04d-%02d-%02dT%02d:%02d:%02d.%06" PRId64 "Z}", fields.tm_year + 1900,
                      fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec,
                      micro - seconds * 1000000);
        return text;
    }
    case svn_opt_revision_committed:
        return "COMMITTED";
    case svn_opt_revision_previous:
        return "PREV";
    case svn_opt_revision_base:
        return "BASE";
    default:
        return "HEAD";
    }
}

bool isNumberOrDate(const LuSVNRevision& revision)
{
    const auto kind = revision.SVNRevision().kind;
    return kind == svn_opt_revision_number || kind == svn_opt_revision_date;
}

bool isHead(const LuSVNRevision& revision)
{
    return revision.SVNRevision().kind == svn_opt_revision_head;
}

// One token that the tokenizer reads back as `text`. A line's first token
// must not start a comment; its last must not end in a blank, which the
// line split would chop, so such a token is quoted.
std::string tokenText(const std::string& text, bool first, bool last)
{
    if (text.empty())
        return "\"\"";
    std::string escaped = first && text.front() == '#' ? "\\" : "";
    for (const char c : text) {
        if (isEscapable(c) || c == '\\' || isSpace(c))
            escaped += '\\';
        escaped += c;
    }
    return last && isSpace(text.back()) ? "\"" + escaped + "\"" : escaped;
}

std::size_t optionalHash(const std::optional<std::string>& text)
{
    return text ? std::hash<std::string>()(*text) : 0;
}

}  // namespace

LuSVNExternalDefinition::LuSVNExternalDefinition()
    : sourceRevision_(LuSVNMutableRevisionSpec::revisionWithRevision(LuSVNRevision::HEAD(), LuSVNRevision::HEAD()))
{
}

LuSVNExternalDefinition::LuSVNExternalDefinition(const LuSVNExternalDefinition& other)
    : LuSVNCoding(other),
      sourceDirectory_(other.sourceDirectory_),
      sourceRevision_(other.sourceRevision_->mutableCopy()),
      targetDirectory_(other.targetDirectory_)
{
}

LuSVNExternalDefinition& LuSVNExternalDefinition::operator=(const LuSVNExternalDefinition& other)
{
    sourceDirectory_ = other.sourceDirectory_;
    sourceRevision_ = other.sourceRevision_->mutableCopy();
    targetDirectory_ = other.targetDirectory_;
    return *this;
}

std::vector<LuSVNExternalDefinition> LuSVNExternalDefinition::externalDefinitionListValue(
    std::string_view description, apr_pool_t* pool)
{
    LUSVN_PARAMETER_ASSERT(pool != nullptr, "pool != nil");
    // Subversion keeps its own properties in UTF-8, and so do definitions.
    if (!LuSVNIsValidUTF8(description))
        throw LuSVNInvalidArgumentException("Externals description is not valid UTF-8");
    const std::string text(description);
    apr_array_header_t* items = nullptr;
    // Releases before 1.5 have no parser of today's syntax; parsing is the
    // same in every release, so the newest backend parses for them.
    std::optional<LuSVNBackendFrame> newest;
    if (!tessera_private::LuSVNCurrentHasEntryPoint(102)) {
        newest.emplace(LuSVNBundleLoader::sharedInstance()->newestBundle());
        pool = newest->pool();
    }
    LuSVNThrowIfError(LuSVNEntry<102>()(&items, "", text.c_str(), false, pool));
    std::vector<LuSVNExternalDefinition> definitions;
    for (int i = 0; items && i < items->nelts; ++i) {
        const auto* item = reinterpret_cast<svn_wc_external_item2_t* const*>(items->elts)[i];
        LuSVNExternalDefinition definition;
        definition.sourceDirectory_ = item->url;
        definition.targetDirectory_ = item->target_dir;
        definition.sourceRevision_ = LuSVNMutableRevisionSpec::revisionWithRevision(
            revisionOfDefinition(item->revision), revisionOfDefinition(item->peg_revision));
        definitions.push_back(std::move(definition));
    }
    // Subversion reads the text up to its first NUL, and so do the lines.
    const std::vector<std::string> lines = definitionLines(text.c_str());
    for (std::size_t i = 0; i < definitions.size() && i < lines.size(); ++i)
        definitions[i].format_ = formatOfLine(lines[i]);
    return definitions;
}

std::vector<LuSVNExternalDefinition> LuSVNExternalDefinition::externalDefinitionListValue(
    std::string_view description)
{
    LuSVNBackendFrame frame(LuSVNBundleLoader::sharedInstance()->newestBundle());
    return externalDefinitionListValue(description, frame.pool());
}

std::string LuSVNExternalDefinition::stringFromExternalDefinitionList(
    const std::vector<LuSVNExternalDefinition>& definitions)
{
    std::string value;
    for (const LuSVNExternalDefinition& definition : definitions)
        value += definition.stringValue() + "\n";
    return value;
}

std::string LuSVNExternalDefinition::stringValue() const
{
    const std::string source = sourceDirectory_.value_or("");
    const std::string target = targetDirectory_.value_or("");
    // Subversion's defaults: no peg revision is HEAD, no revision the peg.
    const auto& givenPeg = sourceRevision_->pegRevision();
    const auto peg = givenPeg->isEqual(LuSVNRevision::UNSPECIFIED()) ? LuSVNRevision::HEAD() : givenPeg;
    const auto& givenRevision = sourceRevision_->operativeRevision();
    const auto revision = givenRevision->isEqual(LuSVNRevision::UNSPECIFIED()) ? peg : givenRevision;
    const bool samePeg = revision->isEqual(peg);
    // Subversion canonicalises targets, so "./" keeps a target from reading
    // as "-r", and "/." keeps a final backslash from escaping the blank after
    // it.
    const auto targetToken = [&](bool last) {
        std::string text = target.starts_with("-r") ? "./" + target : target;
        if (!last && text.ends_with('\\'))
            text += "/.";
        return tokenText(text, !last, last);
    };
    // The old syntax has no peg revision and no keyword but HEAD, which
    // goes without "-r" and needs an absolute URL.
    const bool oldFits = samePeg && (isNumberOrDate(*revision) ||
                                     (isHead(*revision) && isURL(source) && !source.starts_with("-r")));
    if (format_ == LuSVNExternalFormat::Old && oldFits)
        return targetToken(false) + (isNumberOrDate(*revision) ? " -r " + revisionText(*revision) : std::string()) +
               " " + tokenText(source, false, true);
    // "-r" is written when the revision differs from the peg revision, and
    // when a URL starting with "-r" would be read as one. The peg revision
    // is written unless it is HEAD and the URL has no "@" of its own that
    // Subversion would take for a peg revision (nor a final backslash, which
    // would escape the blank after it).
    const bool withRevision = !samePeg || source.starts_with("-r");
    const std::size_t slash = source.rfind('/');
    const bool withPeg = !isHead(*peg) || source.empty() || source.ends_with('\\') ||
                         source.find('@', slash == std::string::npos ? 0 : slash) != std::string::npos;
    const std::string url = withPeg ? source + "@" + revisionText(*peg) : source;
    return (withRevision ? "-r " + revisionText(*revision) + " " : std::string()) +
           tokenText(url, !withRevision, false) + " " + targetToken(true);
}

LuSVNExternalDefinition LuSVNExternalDefinition::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    LuSVNExternalDefinition definition;
    definition.sourceDirectory_ = coder.decodeStringForKey("sourceDirectory");
    if (auto revision = coder.decodeObjectOfClassForKey<LuSVNMutableRevisionSpec>("sourceRevision"))
        definition.sourceRevision_ = std::move(revision);
    definition.targetDirectory_ = coder.decodeStringForKey("targetDirectory");
    return definition;
}

void LuSVNExternalDefinition::setSourceRevision(std::shared_ptr<LuSVNMutableRevisionSpec> revision)
{
    LUSVN_PARAMETER_ASSERT(revision != nullptr, "revision != nil");
    sourceRevision_ = std::move(revision);
}

bool LuSVNExternalDefinition::isEqualToDefinition(const LuSVNExternalDefinition& other) const
{
    return sourceDirectory_ == other.sourceDirectory_ && targetDirectory_ == other.targetDirectory_ &&
           sourceRevision_->isEqual(other.sourceRevision_);
}

std::size_t LuSVNExternalDefinition::hash() const
{
    return optionalHash(sourceDirectory_) ^ optionalHash(targetDirectory_) ^ sourceRevision_->hash();
}

std::string LuSVNExternalDefinition::description() const
{
    return "{ " + tessera_private::LuSVNGenericDescription("LuSVNExternalDefinition", this) +
           " sourceDirectory: " + sourceDirectory_.value_or("(null)") +
           ", sourceRevision: " + sourceRevision_->description() +
           ", targetDirectory: " + targetDirectory_.value_or("(null)") + " }";
}

std::string LuSVNExternalDefinition::archiveClassName() const
{
    return "LuSVNExternalDefinition";
}

void LuSVNExternalDefinition::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeString(sourceDirectory_, "sourceDirectory");
    coder.encodeObject(sourceRevision_, "sourceRevision");
    coder.encodeString(targetDirectory_, "targetDirectory");
}
