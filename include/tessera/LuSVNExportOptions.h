// Options of exporting a clean tree (see LuSVNOptions.h for the conventions
// of the family).
//
//   field               kind            default
//   revision            revision spec   LuSVNRevisionSpec::UNSPECIFIED()
//   depth               depth           LuSVNDepthInfinity (3)
//   processExternals    flag            true
//   overwriteExisting   flag            false
//   initiatedByUser     flag            true
//   EOLMarkers          text            LuSVNEndOfLineDefault (""): files keep
//                                       their line ends; else "LF", "CR" or
//                                       "CRLF" for native-style files
//
// Description, without the revision and initiatedByUser:
// "{ <LuSVNExportOptions: 0x...> depth: 3, processExternals: 1, overwriteExisting: 0, EOLMarkers:  }".
#pragma once

#include <string>
#include <utility>

#include <tessera/LuSVNOptionsWithRevision.h>
#include <tessera/LuSVNStandardProperties.h>

class TESSERA_EXPORT LuSVNExportOptions : public LuSVNOptionsWithRevision {
public:
    static LuSVNExportOptions defaults() { return {}; }

    LuSVNDepth depth() const { return depth_; }
    void setDepth(LuSVNDepth depth) { depth_ = depth; }

    bool processExternals() const { return processExternals_; }
    bool overwriteExisting() const { return overwriteExisting_; }
    bool initiatedByUser() const { return initiatedByUser_; }
    /// Each keeps only the lowest bit of its argument.
    void setProcessExternals(int processExternals) { processExternals_ = processExternals & 1; }
    void setOverwriteExisting(int overwriteExisting) { overwriteExisting_ = overwriteExisting & 1; }
    void setInitiatedByUser(int initiatedByUser) { initiatedByUser_ = initiatedByUser & 1; }

    const std::string& EOLMarkers() const { return EOLMarkers_; }
    void setEOLMarkers(std::string EOLMarkers) { EOLMarkers_ = std::move(EOLMarkers); }

    std::string description() const override;

private:
    LuSVNDepth depth_ = LuSVNDepthInfinity;
    unsigned processExternals_ : 1 = 1;
    unsigned overwriteExisting_ : 1 = 0;
    unsigned initiatedByUser_ : 1 = 1;
    std::string EOLMarkers_{LuSVNEndOfLineDefault};
};
