// What stops vxk-handset: one line for the person who started it.
#pragma once

#include <stdexcept>
#include <string>

namespace handset {

/// Thrown wherever the handset cannot start or go on; what() is one line without the program's name. Only the
/// program's entry catches it.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The same with the reason that errno gives: "cannot do it: No such file or directory".
Error system_error(const std::string& what, int error);

/// One line on standard error, for trouble that the handset survives.
void complain(const std::string& line);

}  // namespace handset
