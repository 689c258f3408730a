// What the handset is made of: one line a subject.
#include "at_channel.h"
#include "cards.h"
#include "diag_port.h"
#include "extension_service.h"
#include "handset.h"
#include "maintenance.h"
#include "sar_service.h"
#include "statistics_debug.h"
#include "statistics_service.h"
#include "uim_service.h"

namespace handset {

void add_subjects(Handset& handset) {
    handset.add_service(std::make_unique<ExtensionService>(handset));
    const auto cards = std::make_shared<Cards>(handset);
    handset.keep(cards);
    handset.add_service(std::make_unique<UimService>(handset, *cards));
    handset.add_service(std::make_unique<StatisticsService>(handset));
    handset.add_service(std::make_unique<SarService>(handset));
    handset.keep(std::make_shared<AtChannel>(handset));
    handset.add_port(std::make_unique<DiagPort>(handset));
    add_maintenance(handset);
    add_statistics_debug(handset);
}

}  // namespace handset
