#include "diag_responder.h"

#include <algorithm>
#include <utility>

#include "core.h"
#include "diag_peripheral.h"
#include "profile_section.h"

namespace handset {
namespace {

bool begins_with(wire::View bytes, const wire::Bytes& beginning) {
    return bytes.size >= beginning.size() && std::equal(beginning.begin(), beginning.end(), bytes.data);
}

}  // namespace

DiagResponder::DiagResponder(Core& core, DiagAnswers answers) : answers_(std::move(answers)) {
    core.control().add_setting("diag", [this](Section& section) {
        DiagAnswers changed = answers_;
        read_answers(section, changed);
        return [this, changed] { answers_ = changed; };
    });
}

DiagResponse DiagResponder::response(DiagMasks& masks, wire::View command) const {
    DiagResponse response;
    response.timing = answers_.timing;
    for (const DiagResponse& wanted : answers_.responses) {
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
