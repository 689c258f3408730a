// The Linux library's decoder, by the tables of all services: `u8 service` (extension, UIM, statistics,
// SAR), `u8 kind` (request, response, indication), `u16 message`, then its TLVs. What decodes must
// survive being encoded and decoded again, unless it cannot be encoded: a lenient count may stand above what
// was kept.
#include "finding.h"
#include "modem.h"
#include "qmi_codec.h"
#include "tables.h"

namespace {

using Structure = std::vector<uint8_t>;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const qmi_idl_service_object_type services[] = {extension_service(), seam::uim_table(),
                                                    seam::statistics_table(), seam::sar_table()};
    const auto service = services[input.u8() % std::size(services)];
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
