#include <tessera/LuSVNBlameSection.h>
#include <tessera/LuSVNDateConversion.h>

#include "LuSVNCodedDate.h"

static const LuSVNArchivableClassRegistrar<LuSVNBlameSection> registrar("LuSVNBlameSection");

LuSVNBlameSection::LuSVNBlameSection(std::optional<std::string> author, std::optional<Date> date,
                                     std::int64_t revision, LuSVNLineRange lines,
                                     std::optional<LuSVNBlameOrigin> mergedOrigin)
    : author_(std::move(author)), date_(date), revision_(revision), lines_(lines), mergedOrigin_(std::move(mergedOrigin))
{
}

std::shared_ptr<LuSVNBlameSection> LuSVNBlameSection::blameSectionWithAuthor(std::optional<std::string> author,
                                                                             std::optional<Date> date,
                                                                             std::int64_t revision)
{
    return blameSectionWithAuthor(std::move(author), date, revision, LuSVNLineRange{});
}

std::shared_ptr<LuSVNBlameSection> LuSVNBlameSection::blameSectionWithAuthor(std::optional<std::string> author,
                                                                             std::optional<Date> date,
                                                                             std::int64_t revision,
                                                                             LuSVNLineRange lines)
{
    return blameSectionWithAuthor(std::move(author), date, revision, lines, std::nullopt);
}

std::shared_ptr<LuSVNBlameSection> LuSVNBlameSection::blameSectionWithAuthor(
    std::optional<std::string> author, std::optional<Date> date, std::int64_t revision, LuSVNLineRange lines,
    std::optional<LuSVNBlameOrigin> mergedOrigin)
{
    return std::shared_ptr<LuSVNBlameSection>(
        new LuSVNBlameSection(std::move(author), date, revision, lines, std::move(mergedOrigin)));
}

std::shared_ptr<LuSVNBlameSection> LuSVNBlameSection::blameSectionWithBlameSection(const LuSVNBlameSection& section)
{
    return blameSectionWithBlameSection(section, section.lines_);
}

std::shared_ptr<LuSVNBlameSection> LuSVNBlameSection::blameSectionWithBlameSection(const LuSVNBlameSection& section,
                                                                                   LuSVNLineRange lines)
{
    return blameSectionWithAuthor(section.author_, section.date_, section.revision_, lines, section.mergedOrigin_);
}

std::string LuSVNBlameSection::description() const
{
    return "Author:" + author_.value_or("(null)") +
           " Date:" + (date_ ? LuSVNDateConversion::ISO8601StringValue(*date_) : "(null)") +
           " Revision:" + std::to_string(revision_) + " Lines:" + std::to_string(lines_.location) + "," +
           std::to_string(lines_.length);
}

std::shared_ptr<LuSVNBlameSection> LuSVNBlameSection::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    auto author = coder.decodeStringForKey("author");
    const auto date = tessera_private::LuSVNDecodeDate(coder, "date");
    const auto revision = coder.decodeInt64ForKey("revision");
    const LuSVNLineRange lines{static_cast<std::uint64_t>(coder.decodeInt64ForKey("linesLocation")),
                               static_cast<std::uint64_t>(coder.decodeInt64ForKey("linesLength"))};
    std::optional<LuSVNBlameOrigin> mergedOrigin;
    if (coder.containsValueForKey("mergedPath"))
        mergedOrigin = LuSVNBlameOrigin{coder.decodeInt64ForKey("mergedRevision"), coder.decodeStringForKey("mergedAuthor"),
                                        tessera_private::LuSVNDecodeDate(coder, "mergedDate"),
                                        coder.decodeStringForKey("mergedPath").value_or("")};
    return blameSectionWithAuthor(std::move(author), date, revision, lines, std::move(mergedOrigin));
}

std::string LuSVNBlameSection::archiveClassName() const
{
    return "LuSVNBlameSection";
}

void LuSVNBlameSection::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    coder.encodeString(author_, "author");
    tessera_private::LuSVNEncodeDate(coder, date_, "date");
    coder.encodeInt64(revision_, "revision");
    coder.encodeInt64(static_cast<std::int64_t>(lines_.location), "linesLocation");
    coder.encodeInt64(static_cast<std::int64_t>(lines_.length), "linesLength");
    if (mergedOrigin_) {
        coder.encodeInt64(mergedOrigin_->revision, "mergedRevision");
        coder.encodeString(mergedOrigin_->author, "mergedAuthor");
        tessera_private::LuSVNEncodeDate(coder, mergedOrigin_->date, "mergedDate");
        coder.encodeString(mergedOrigin_->path, "mergedPath");
    }
}
