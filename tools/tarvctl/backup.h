// The snapshot every write of tarvctl leaves of the region as it was, and
// the one command that puts it back.
#ifndef TARVCTL_BACKUP_H
#define TARVCTL_BACKUP_H

#include <string>

#include "common/bytes.h"
#include "common/region_access.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

// Where backups go: TARV_BACKUP_DIR, else $XDG_STATE_HOME/tarvctl, else
// ~/.local/state/tarvctl.
[[nodiscard]] std::string backup_dir();

// Writes `region` as a snapshot file to `path`, or when it is empty to a
// new file "<object>-<UTC time>.snap" in backup_dir() (created as needed;
// "-2", "-3" ... when the name is taken), and returns the file's path.
// Throws kExitIo: nothing is written to the region without its backup.
[[nodiscard]] std::string write_backup(Bytes region, const std::string& path);

// "tarvctl snapshot load --force FILE" (with the --prefix in use).
[[nodiscard]] std::string undo_command(const Options& options, const std::string& backup);

}  // namespace tarvctl

#endif
