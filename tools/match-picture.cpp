// Draws a match that the arena has recorded.

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "MatchPicture.h"

int main(int argc, char** argv) {
  std::string recording;
  std::string output;
  arena::MatchPictureOptions options;

  CLI::App app{
      "Draws a match that `arena --record FILE` has written, seen from above, as an SVG picture: "
      "the ball's path, the players' paths and where they ended, goals and score."};
  app.add_option("recording", recording, "The recording")->required()->check(CLI::ExistingFile);
  app.add_option("-o,--output", output, "Where to write the picture; standard output by default");
  app.add_option("--from", options.from, "Game time from which on to draw, s");
  app.add_option("--to", options.to, "Game time up to which to draw, s");
  app.add_flag("!--no-players", options.players, "Draw the ball's path alone");
  CLI11_PARSE(app, argc, argv);

  try {
    const auto [svg, complete] = arena::drawMatch(recording, options);
    if (!complete) {
      std::cerr << "match-picture: the recording has no end, it is drawn as far as it goes\n";
    }
    if (output.empty()) {
      std::cout << svg;
      return 0;
    }
    std::ofstream file(output);
    if (!(file << svg).flush()) throw std::runtime_error("cannot write " + output);
  } catch (const std::exception& error) {
    std::cerr << "match-picture: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
