// Objects of a tag, a length and a value, as cards and eUICCs exchange them. A tag of several bytes is one
// number, most significant byte first: 0x5A, 0xBF2D. Tags have at most three bytes, lengths four bytes behind
// the first.
#pragma once

#include <optional>
#include <string_view>

#include "wire.h"

namespace handset {

struct DerObject {
    uint32_t tag = 0;
    wire::View value;
};

/// Takes objects from the front of bytes one by one.
class DerReader {
public:
    explicit DerReader(wire::View bytes) : reader_(bytes) {}

    /// The next object, or nothing at the end and at one that is cut or runs past it; then ok() tells
    /// the two apart.
    std::optional<DerObject> next();
    bool ok() const { return ok_; }

private:
    std::optional<uint32_t> tag();
    std::optional<size_t> length();

    wire::Reader reader_;
    bool ok_ = true;
};

/// Whether the bytes are objects to their end.
bool is_der(wire::View bytes);

/// The value of the first object with the tag, or nothing.
std::optional<wire::View> find_der(wire::View bytes, uint32_t tag);

/// The one object that the bytes are, or nothing.
std::optional<DerObject> single_der(wire::View bytes);

/// An unsigned number of at most four bytes, the most significant first; nothing when the value is none.
std::optional<uint32_t> der_number(wire::View value);

class DerWriter {
public:
    DerWriter& object(uint32_t tag, wire::View value);
    DerWriter& text(uint32_t tag, std::string_view value) {
        return object(tag, {value.data(), value.size()});
    }

    /// As few bytes as keep the number positive.
    DerWriter& number(uint32_t tag, uint32_t value);

    /// Bits from the first on, without zeros at the end.
    DerWriter& bits(uint32_t tag, uint8_t bits);

    const wire::Bytes& data() const { return bytes_; }
    wire::Bytes take() { return std::move(bytes_); }

private:
    void big_endian(uint32_t value);

    wire::Bytes bytes_;
};

/// One object as bytes.
wire::Bytes der(uint32_t tag, wire::View value = {});

}  // namespace handset
