#include "groups.h"

namespace {

const Group* const kGroups[] = {
    &kNvGroup,    &kImeiGroup, &kRfGroup,       &kNvefsGroup, &kCmnGroup,   &kRawQmiGroup,
    &kStatsGroup, &kAtGroup,   &kStatsQmiGroup, &kMbnGroup,   &kSmartGroup,
};

}  // namespace

const Group* find_group(int option) {
    for (const Group* group : kGroups)
        if (group->number == option)
            return group;
    return nullptr;
}

int show_help(int group) {
    print_help_head();
    for (const Group* each : kGroups) {
        if (group == 0 || group == each->number)
            print_section(*each);
    }
    print_help_foot();
    return 0;
}
