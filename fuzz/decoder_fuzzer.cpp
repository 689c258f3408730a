// The Linux library's decoder, by the tables of all services: `u8 service` (extension, UIM, statistics,
// SAR, NAS), `u8 kind` (request, response, indication), `u16 message`, then its TLVs. What decodes must
// survive being encoded and decoded again, unless it cannot be encoded: a lenient count may stand above what
// was kept.
#include "finding.h"
#include "modem.h"
#include "modem_statistics_v01.h"
#include "network_access_service_v01.h"
#include "qmi_codec.h"
#include "sar_v01.h"
#include "user_identity_module_v01.h"

namespace {

using Structure = std::vector<uint8_t>;

qmi_idl_service_object_type service_of(uint8_t choice) {
    const qmi_idl_service_object_type services[] = {
        extension_service(),
        uim_get_service_object_internal_v01(UIM_V01_IDL_MAJOR_VERS, UIM_V01_IDL_MINOR_VERS,
                                            UIM_V01_IDL_TOOL_VERS),
        vs_get_service_object_internal_v01(VS_V01_IDL_MAJOR_VERS, VS_V01_IDL_MINOR_VERS,
                                           VS_V01_IDL_TOOL_VERS),
        sar_get_service_object_internal_v01(SAR_V01_IDL_MAJOR_VERS, SAR_V01_IDL_MINOR_VERS,
                                            SAR_V01_IDL_TOOL_VERS),
        nas_get_service_object_internal_v01(NAS_V01_IDL_MAJOR_VERS, NAS_V01_IDL_MINOR_VERS,
                                            NAS_V01_IDL_TOOL_VERS),
    };
    return services[choice % std::size(services)];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const auto service = service_of(input.u8());
    const auto type = static_cast<qmi_idl_type_of_message_type>(input.u8() % 3);
    const auto* message = seam::find_message(service, type, input.u16());
    if (message == nullptr)
        return 0;
    Structure decoded(message->c_struct_len);
    if (!seam::decode_message(*message, input.rest(), decoded.data()))
        return 0;
    const auto encoded = seam::encode_message(*message, decoded.data());
    if (!encoded)
        return 0;
    Structure again(message->c_struct_len);
    require(seam::decode_message(*message, *encoded, again.data()), "what was encoded decodes");
    require(again == decoded, "what was encoded decodes to the same");
    return 0;
}
