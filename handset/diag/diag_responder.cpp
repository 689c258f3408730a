#include "diag_responder.h"

#include <algorithm>

#include "diag_peripheral.h"

namespace handset {
namespace {

bool begins_with(wire::View bytes, const wire::Bytes& beginning) {
    return bytes.size >= beginning.size() && std::equal(beginning.begin(), beginning.end(), bytes.data);
}

}  // namespace

DiagResponse diag_response(const DiagProfile& profile, DiagMasks& masks, wire::View command) {
    DiagResponse response;
    response.timing = profile.timing;
    for (const DiagResponse& wanted : profile.responses) {
        if (begins_with(command, wanted.command)) {
            response = wanted;
            break;
        }
    }
    if (!response.bytes)
        response.bytes = answer_diag_command(command, masks);
    return response;
}

}  // namespace handset
