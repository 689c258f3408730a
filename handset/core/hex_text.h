// Bytes as people write and read them: in the profile, in the wire log and on the screen.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "wire.h"

namespace handset {

/// Appends "01 02 FF". A tail of 8 or more zero bytes is written as its count: "01 02 (+490 zero)".
void append_hex(std::string& out, wire::View bytes);

/// Reads pairs of hexadecimal digits; blanks may stand between pairs. Nothing when the text is anything else.
std::optional<wire::Bytes> parse_hex(std::string_view text);

/// Appends the text in double quotes: printable ASCII as it stands, \" \\ \r \n \t, every other byte as \xNN.
void append_quoted(std::string& out, std::string_view text);

}  // namespace handset
