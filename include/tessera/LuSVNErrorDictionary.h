// The error dictionary of a LuSVNException: a typed record of a Subversion
// error chain that keeps the key names it is serialised under.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNExport.h>

struct TESSERA_EXPORT LuSVNErrorDictionary : public LuSVNCoding {
    static constexpr std::string_view messageKey = "message";
    static constexpr std::string_view statusKey = "status";
    static constexpr std::string_view fileKey = "file";
    static constexpr std::string_view lineKey = "line";
    static constexpr std::string_view causeKey = "cause";

    /// "message": the best message of the error; absent in dictionaries made
    /// from a reason alone.
    std::optional<std::string> message;
    /// "status": the error's numeric code.
    std::optional<std::int64_t> status;
    /// "file" and "line": the source location recorded in the error, if any.
    std::optional<std::string> file;
    std::optional<std::int64_t> line;
    /// "cause": the dictionary of the error's child, if it has one.
    std::shared_ptr<const LuSVNErrorDictionary> cause;

    /// Archived as {"message", "status", "file", "line", "cause"} in this
    /// order, absent entries left out.
    std::string archiveClassName() const override;
    void encodeWithCoder(LuSVNCoder& coder) const override;
    static std::shared_ptr<LuSVNErrorDictionary> initWithCoder(LuSVNCoder& coder);

    friend TESSERA_EXPORT bool operator==(const LuSVNErrorDictionary& a, const LuSVNErrorDictionary& b);
};
