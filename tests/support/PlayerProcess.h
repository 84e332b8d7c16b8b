#ifndef QUOLNARIS_TESTS_SUPPORT_PLAYERPROCESS_H_
#define QUOLNARIS_TESTS_SUPPORT_PLAYERPROCESS_H_

#include <filesystem>
#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempDirectory.h"

namespace support {

// The program `quolnaris`, running in a directory of the test's choice.
class PlayerProcess : public Process {
 public:
  PlayerProcess(const std::filesystem::path& where, const std::vector<std::string>& options,
                const Environment& extra = {})
      : Process("quolnaris", where, options, extra) {}

  // The path that the program is started by, its argv[0].
  static std::string program() { return pathOf("quolnaris"); }
};

// A directory like the one that the player is started from: with a copy of the repository's
// Configs/, and an empty Logs/.
class PlayerDirectory : public TempDirectory {
 public:
  PlayerDirectory();

  // Replaces the file "Configs/<name>.conf".
  void setConfig(const std::string& name, const std::string& text) const;

  // Replaces `from`, which must be there, in the file "Configs/<name>.conf".
  void editConfig(const std::string& name, const std::string& from, const std::string& to) const;
};

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_PLAYERPROCESS_H_
