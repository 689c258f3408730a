// The tool's help.
#pragma once

/// Prints the help of one group between the two banners; of all groups for 0, of none for a number that is no
/// group. Returns 0.
int show_help(int group);
