#include "es10.h"

namespace handset {
namespace {

constexpr struct {
    uint32_t tag;
    Es10Answer (*function)(Es10& es10, wire::View request);
} kFunctions[] = {
    {0xBF20, es10::euicc_info_1},         {0xBF21, es10::prepare_download},
    {0xBF22, es10::euicc_info_2},         {0xBF28, es10::list_notifications},
    {0xBF29, es10::set_nickname},         {0xBF2B, es10::retrieve_notifications},
    {0xBF2D, es10::profiles_info},        {0xBF2E, es10::euicc_challenge},
    {0xBF30, es10::remove_notification},  {0xBF31, es10::enable_profile},
    {0xBF32, es10::disable_profile},      {0xBF33, es10::delete_profile},
    {0xBF34, es10::memory_reset},         {0xBF38, es10::authenticate_server},
    {0xBF3C, es10::configured_addresses}, {0xBF3E, es10::euicc_data},
    {0xBF3F, es10::set_dp_address},       {0xBF41, es10::cancel_session},
    {0xBF43, es10::authorisation_table},
};

constexpr uint8_t kResult = 0x80;

}  // namespace

CardAnswer answer_es10(Es10& es10, const DerObject& request) {
    for (const auto& row : kFunctions) {
        if (row.tag != request.tag)
            continue;
        const Es10Answer answer = is_der(request.value) ? row.function(es10, request.value) : std::nullopt;
        return answer ? CardAnswer(der(row.tag, *answer)) : CardAnswer(kSwWrongData);
    }
    return kSwNoSuchData;
}

wire::View es10_version() {
    static constexpr uint8_t kVersion[] = {2, 2, 2};
    return {kVersion, sizeof kVersion};
}

wire::Bytes es10::result(Es10Result result) {
    return DerWriter().number(kResult, result).take();
}

std::optional<std::string> es10::utf8(wire::View bytes, size_t longest) {
    if (bytes.size > longest)
        return std::nullopt;
    for (size_t i = 0; i < bytes.size;) {
        const uint8_t first = bytes.data[i++];
        const int more = first < 0x80         ? 0
                         : first >> 5 == 0x6  ? 1
                         : first >> 4 == 0xE  ? 2
                         : first >> 3 == 0x1E ? 3
                                              : -1;
        for (int k = 0; k < more; ++k) {
            if (i == bytes.size || (bytes.data[i++] & 0xC0) != 0x80)
                return std::nullopt;
        }
        if (more < 0 || first == 0)
            return std::nullopt;
    }
    return bytes.size == 0 ? std::string() : std::string(bytes.data, bytes.data + bytes.size);
}

}  // namespace handset
