#include "support/TempDirectory.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace support {

TempDirectory::TempDirectory() {
  std::string name = std::filesystem::temp_directory_path() / "quolnaris-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
  directory = name;
}

TempDirectory::~TempDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
}

std::filesystem::path TempDirectory::write(const std::string& name, const std::string& text) const {
  const std::filesystem::path path = directory / name;
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

std::string TempDirectory::read(const std::string& name) const {
  std::ifstream in(directory / name, std::ios::binary);
  if (!in) throw std::runtime_error("can't read " + (directory / name).string());
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace support
