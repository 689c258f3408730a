// The world around what a fuzzer runs: a folder in memory that is gone with the fuzzer.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "finding.h"

class Ground {
public:
    Ground() { require(mkdtemp(path_.data()) != nullptr, "a temporary folder can be made"); }
    ~Ground() { std::filesystem::remove_all(path_); }
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;

    std::string at(const char* name) const { return path_ + "/" + name; }
    const std::string& path() const { return path_; }

private:
    std::string path_ =
        std::filesystem::exists("/dev/shm") ? "/dev/shm/vxk-fuzz.XXXXXX" : "/tmp/vxk-fuzz.XXXXXX";
};
