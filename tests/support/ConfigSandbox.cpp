#include "support/ConfigSandbox.h"

#include "support/TempDirectory.h"

namespace support {

ConfigSandbox::ConfigSandbox() : previous(Config::configFiles) {
  Config::configFiles = new Config::ConfigFiles;
}

ConfigSandbox::ConfigSandbox(Files files) : ConfigSandbox() {
  load(files);
}

ConfigSandbox::~ConfigSandbox() {
  delete Config::configFiles;
  Config::configFiles = previous;
}

void ConfigSandbox::load(Files files) {
  const TempDirectory directory;
  for (const File& file : files) directory.write("Configs/" + file.name + ".conf", file.text);
  std::filesystem::create_directories(directory.path() / "Configs");
  const WorkingDirectory inside(directory.path());
  config.addFiles();
}

void ConfigSandbox::loadDeployment() {
  const WorkingDirectory inside(QUOLNARIS_SOURCE_DIR);
  config.addFiles();
}

void ConfigSandbox::set(const std::string& file, const std::string& group, const std::string& key,
                        const std::string& text) {
  config[file].addGroup(group);
  config[file][group].add(key, text);
}

}  // namespace support
