#include <tessera/LuSVNErrorDictionary.h>

namespace {
const LuSVNArchivableClassRegistrar<LuSVNErrorDictionary> registrar("LuSVNErrorDictionary");
}

std::string LuSVNErrorDictionary::archiveClassName() const
{
    return "LuSVNErrorDictionary";
}

void LuSVNErrorDictionary::encodeWithCoder(LuSVNCoder& coder) const
{
    LuSVNRequireKeyedArchiver(coder);
    if (message)
        coder.encodeString(message, messageKey);
    if (status)
        coder.encodeInt64(*status, statusKey);
    if (file)
        coder.encodeString(file, fileKey);
    if (line)
        coder.encodeInt64(*line, lineKey);
    if (cause)
        coder.encodeObject(cause.get(), causeKey);
}

std::shared_ptr<LuSVNErrorDictionary> LuSVNErrorDictionary::initWithCoder(LuSVNCoder& coder)
{
    LuSVNRequireKeyedUnarchiver(coder);
    auto dictionary = std::make_shared<LuSVNErrorDictionary>();
    dictionary->message = coder.decodeStringForKey(messageKey);
    if (coder.containsValueForKey(statusKey))
        dictionary->status = coder.decodeInt64ForKey(statusKey);
    dictionary->file = coder.decodeStringForKey(fileKey);
    if (coder.containsValueForKey(lineKey))
        dictionary->line = coder.decodeInt64ForKey(lineKey);
    dictionary->cause = coder.decodeObjectOfClassForKey<LuSVNErrorDictionary>(causeKey);
    return dictionary;
}

bool operator==(const LuSVNErrorDictionary& a, const LuSVNErrorDictionary& b)
{
    if (a.message != b.message || a.status != b.status || a.file != b.file || a.line != b.line)
        return false;
    if (!a.cause || !b.cause)
        return a.cause == b.cause;
    return *a.cause == *b.cause;
}
