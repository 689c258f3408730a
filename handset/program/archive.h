// Captures: archives of the files that tell of one run, packed and unpacked by the system's tar.
#pragma once

#include <string>

namespace handset {

constexpr char kCaptureTrace[] = "trace.jsonl";
constexpr char kCaptureProperties[] = "properties";

/// Whether the file is a compressed archive.
bool is_archive(const std::string& path);

/// A file of the archive's folder. Throws Error when it is not there or is longer than 256 MiB.
std::string read_member(const std::string& archive, const std::string& name);

/// Packs a folder, by its last name, into a compressed archive. Throws Error.
void write_archive(const std::string& path, const std::string& folder);

}  // namespace handset
