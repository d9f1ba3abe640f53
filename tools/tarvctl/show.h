// Shared by the views and `watch`.
#ifndef TARVCTL_SHOW_H
#define TARVCTL_SHOW_H

#include <string>

#include "objects.h"

namespace tarvctl {

// "3 MDs, 3 MAs, 5 MEPs, 2 MIPs, 1 throughput test, 2 PM sessions, 5 bandwidth notifications".
[[nodiscard]] std::string summary(const Configuration& c);

// The MD/MA/MEP tree and the summary, as `show` prints it.
void print_tree(const Configuration& c);

}  // namespace tarvctl

#endif
