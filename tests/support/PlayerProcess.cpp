#include "support/PlayerProcess.h"

#include <stdexcept>

namespace support {

PlayerDirectory::PlayerDirectory() {
  std::filesystem::copy(std::filesystem::path(QUOLNARIS_SOURCE_DIR) / "Configs", path() / "Configs",
                        std::filesystem::copy_options::recursive);
  std::filesystem::create_directory(path() / "Logs");
}

void PlayerDirectory::setConfig(const std::string& name, const std::string& text) const {
  write("Configs/" + name + ".conf", text);
}

void PlayerDirectory::editConfig(const std::string& name, const std::string& from,
                                 const std::string& to) const {
  std::string text = read("Configs/" + name + ".conf");
  const std::string::size_type at = text.find(from);
  if (at == std::string::npos) throw std::runtime_error(from + " is not in " + name);
  setConfig(name, text.replace(at, from.size(), to));
}

}  // namespace support
