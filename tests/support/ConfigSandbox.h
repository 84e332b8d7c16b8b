#ifndef QUOLNARIS_TESTS_SUPPORT_CONFIGSANDBOX_H_
#define QUOLNARIS_TESTS_SUPPORT_CONFIGSANDBOX_H_

#include <initializer_list>
#include <string>

#include "Utilities/Config.h"

namespace support {

// Gives the global `config` an empty store for the life of this object, and the former store back
// afterwards. To load files into it:
//
//   support::ConfigSandbox sandbox{{"Agent", "[Public]\nType = 0\n"}};
//   sandbox.load({{"Agent", "[Public]\nType = 4\n"}});  // overrides, keeps what is not named
//   sandbox.loadDeployment();                           // the repository's Configs/
//
// The files go the player's way: they are written to "./Configs/" of a temporary directory and
// read by `Config::addFiles` there. The working directory is the same again after each call.
class ConfigSandbox {
 public:
  // The name of a file, without ".conf", and its text.
  struct File {
    std::string name;
    std::string text;
  };
  using Files = std::initializer_list<File>;

  ConfigSandbox();
  ConfigSandbox(Files files);
  ~ConfigSandbox();
  ConfigSandbox(const ConfigSandbox&) = delete;
  ConfigSandbox& operator=(const ConfigSandbox&) = delete;

  void load(Files files);
  void loadDeployment();

  // Sets one key of a loaded file; makes the group if it is absent.
  void set(const std::string& file, const std::string& group, const std::string& key,
           const std::string& text);

 private:
  Config::ConfigFiles* previous;
};

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_CONFIGSANDBOX_H_
