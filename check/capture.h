// Evidence of one run: an archive with the command, what it printed, its verdict, what it exchanged with the
// modem, log and properties. `vxk-handset run --replay` takes it.
#pragma once

#include <string>

#include "command_check.h"

namespace check {

class Capture {
public:
    /// A file that cannot be written is refused before anything runs. Throws PlanError.
    explicit Capture(std::string path);
    ~Capture();
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    /// The same handset, whose runs leave a trace.
    Handset traced(const Handset& handset) const;

    /// Packs the archive. Throws PlanError.
    void write(const Handset& handset, const Result& result) const;

private:
    std::string path_;
    std::string scratch_;
    std::string folder_;  // in it, by the archive's name
};

}  // namespace check
