#include "structures.h"

#include "modem_statistics_v01.h"
#include "qmi_codec.h"
#include "sar_v01.h"
#include "service_tables.h"
#include "tables.h"
#include "user_identity_module_v01.h"

namespace seam {

std::optional<wire::Bytes> encode_structure(uint16_t service, const void* description, bool is_request,
                                            unsigned message, const void* structure, size_t size) {
    const auto* table = static_cast<qmi_idl_service_object_type>(description);
    for (const auto* known : {uim_table(), statistics_table(), sar_table()}) {
        if (description == nullptr && known->service_id == service)
            table = known;
    }
    const auto* row = find_message(table, is_request ? QMI_IDL_REQUEST : QMI_IDL_RESPONSE, message);
    if (row == nullptr || row->c_struct_len != size || (structure == nullptr && size != 0))
        return std::nullopt;
    return encode_message(*row, structure);
}

}  // namespace seam
