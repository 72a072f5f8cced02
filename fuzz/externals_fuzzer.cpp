// "svn:externals" values parsed by the real backend. Parsing either answers
// definitions or raises LuSVNException (Subversion refused the text) or
// LuSVNInvalidArgumentException (text that is not UTF-8, a revision the
// library cannot hold). Every definition has a source and a relative target
// that does not climb, and survives copying and archiving equal, with the
// same hash. Printed back, in the format each line came from, the value
// parses to the same definitions in the same formats.
#include <tessera/LuSVNException.h>
#include <tessera/LuSVNExternalDefinition.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include "TesseraFuzzSupport.h"

using tessera_fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    tessera_fuzz::initializeLibrary();
    std::vector<LuSVNExternalDefinition> definitions;
    try {
        definitions = LuSVNExternalDefinition::externalDefinitionListValue(tessera_fuzz::textOf(data, size));
    } catch (const LuSVNException&) {
        return 0;
    }
    for (const LuSVNExternalDefinition& definition : definitions) {
        // Subversion accepts an empty source ("@ dir"), so only its presence is certain.
        require(definition.sourceDirectory().has_value(), "a source exists");
        const std::string target = definition.targetDirectory().value_or("");
        require(!target.empty() && target.front() != '/', "the target is relative");
        require(("/" + target + "/").find("/../") == std::string::npos, "the target does not climb");
        const LuSVNExternalDefinition copy = definition;
        require(copy == definition && copy.hash() == definition.hash(), "a copy is equal");
        const auto restored = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<LuSVNExternalDefinition>(
            LuSVNKeyedArchiver::archivedDataWithRootObject(definition));
        require(*restored == definition && restored->hash() == definition.hash(), "an archive restores it");
    }
    const std::string printed = LuSVNExternalDefinition::stringFromExternalDefinitionList(definitions);
    std::vector<LuSVNExternalDefinition> reparsed;
    try {
        reparsed = LuSVNExternalDefinition::externalDefinitionListValue(printed);
    } catch (const LuSVNException& failure) {
        require(false, ("the printed value parses: " + printed + ": " + failure.reason()).c_str());
    }
    require(reparsed == definitions, ("the printed value gives the same definitions: " + printed).c_str());
    for (std::size_t i = 0; i < definitions.size(); ++i)
        require(reparsed[i].format() == definitions[i].format(), ("each keeps its format: " + printed).c_str());
    return 0;
}
