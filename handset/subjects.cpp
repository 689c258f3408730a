// What the handset is made of: one line a subject.
#include "extension_service.h"
#include "handset.h"

namespace handset {

void add_subjects(Handset& handset) {
    handset.add_service(std::make_unique<ExtensionService>(handset));
}

}  // namespace handset
