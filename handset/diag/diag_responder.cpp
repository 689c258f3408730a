#include "diag_responder.h"

#include <algorithm>

#include "core.h"
#include "diag_peripheral.h"
#include "profile_section.h"

namespace handset {
namespace {

bool begins_with(wire::View bytes, const wire::Bytes& beginning) {
    return bytes.size >= beginning.size() && std::equal(beginning.begin(), beginning.end(), bytes.data);
}

}  // namespace

DiagResponse diag_response(const DiagAnswers& answers, DiagMasks& masks, wire::View command) {
    DiagResponse response;
    response.timing = answers.timing;
    for (const DiagResponse& wanted : answers.responses) {
        if (begins_with(command, wanted.command)) {
            response = wanted;
            break;
        }
    }
    if (!response.bytes)
        response.bytes = answer_diag_command(command, masks);
    return response;
}

void let_change(Core& core, DiagAnswers& answers) {
    core.control().add_setting("diag", [&answers](Section& section) {
        DiagAnswers changed = answers;
        read_answers(section, changed);
        return [&answers, changed] { answers = changed; };
    });
}

}  // namespace handset
