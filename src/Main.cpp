#include <fstream>

#include "Agent/OurPlayer.h"

namespace {

// Both files are created empty in the working directory at every start; nothing writes to them.
std::ofstream server("server.txt", std::ios::out | std::ios::trunc);
std::ofstream agent("agent.txt", std::ios::out | std::ios::trunc);

}  // namespace

int main(int argc, char** argv) {
  OurPlayer player(argc, argv);
  player.publish();
  player.run();
  return 0;
}
