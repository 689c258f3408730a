// What the modem does for maintenance commands: restart, full dump, NV sync, and the antenna configurations
// that it keeps in its files.
#pragma once

namespace handset {

class Handset;

/// Answers the commands from now on.
void add_maintenance(Handset& handset);

}  // namespace handset
