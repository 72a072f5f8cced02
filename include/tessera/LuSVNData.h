// Binary data: bytes that are not text.
//
// Property values that are not valid UTF-8 come back as LuSVNData, and
// archives store it exactly. A value type, immutable by convention: once
// made, its bytes do not change.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include <tessera/LuSVNExport.h>

class TESSERA_EXPORT LuSVNData {
public:
    /// Empty data.
    LuSVNData() = default;

    /// A copy of `length` bytes at `bytes`. `bytes` may be null only when
    /// `length` is 0; otherwise LuSVNInternalInconsistencyException.
    LuSVNData(const void* bytes, std::size_t length);

    /// Takes over the bytes.
    explicit LuSVNData(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

    /// The bytes.
    const std::vector<std::uint8_t>& bytes() const noexcept { return bytes_; }

    /// Pointer to the first byte; may be null when empty.
    const std::uint8_t* data() const noexcept { return bytes_.data(); }

    /// Number of bytes.
    std::size_t size() const noexcept { return bytes_.size(); }

    bool empty() const noexcept { return bytes_.empty(); }

    /// Equal when the bytes are; ordered bytewise (unsigned), shorter prefix first.
    friend bool operator==(const LuSVNData&, const LuSVNData&) = default;
    friend std::strong_ordering operator<=>(const LuSVNData& a, const LuSVNData& b) noexcept
    {
        return a.bytes_ <=> b.bytes_;
    }

private:
    std::vector<std::uint8_t> bytes_;
};

template <>
struct std::hash<LuSVNData> {
    std::size_t operator()(const LuSVNData& data) const noexcept
    {
        return std::hash<std::string_view>()(
            std::string_view(reinterpret_cast<const char*>(data.data()), data.size()));
    }
};
