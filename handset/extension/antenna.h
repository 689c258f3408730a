// What the modem does for the antenna commands: it keeps their configurations in its files.
#pragma once

namespace handset {

class CommonRequests;
class ModemFiles;

/// Answers the antenna requests. All are as long as the handset.
struct Antenna {
    Antenna(CommonRequests& requests, ModemFiles& files);
};

}  // namespace handset
