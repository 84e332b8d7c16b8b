// Prints what a match that the arena has recorded tells about play.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "MatchFigures.h"

namespace {

void tell(const arena::MatchFigures& figures, const std::array<std::string, 2>& names) {
  using arena::Side;
  std::printf("%s %d : %d %s, %ld cycles\n", names[0].c_str(), figures.score()[0],
              figures.score()[1], names[1].c_str(), figures.cycles());
  for (const arena::MatchFigures::Goal& goal : figures.goals()) {
    std::printf("  goal after %.2f s for %s, by number %d\n", goal.time,
                goal.side == Side::Left ? "left" : "right", goal.scorer);
  }
  if (figures.firstTouch()) {
    std::printf("first touch after %.2f s, by number %d\n", figures.firstTouch()->time,
                figures.firstTouch()->number);
  }
  std::printf("the ball moved %.1f m; ahead %.1f m (left), %.1f m (right)\n", figures.ballMetres(),
              figures.ballForward()[0], figures.ballForward()[1]);
  std::printf("player    falls  stand-ups  walked     outside    down\n");
  for (const auto& [who, player] : figures.players()) {
    std::printf("%-5s %2d  %6d  %9d  %6.1f m  %7.1f s  %6.1f s\n",
                who.first == Side::Left ? "left" : "right", who.second, player.falls,
                player.standUps, player.walked, player.outside, player.down);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::string recording;
  double places = 0;
  bool json = false;

  CLI::App app{
      "Prints what a match that `arena --record FILE` has written tells about play: score, goals, "
      "first touch, way of the ball, falls and ways of the players."};
  app.add_option("recording", recording, "The recording")->required()->check(CLI::ExistingFile);
  app.add_flag("--json", json, "All figures as one line of JSON");
  app.add_option("--places", places,
                 "With --json: also where each player was, so many seconds apart; 0: not at all")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  CLI11_PARSE(app, argc, argv);

  try {
    std::array<std::string, 2> names;
    const arena::MatchFigures figures = arena::readMatchFigures(recording, places, names);
    if (json) {
      std::cout << figures.json(names) << '\n';
    } else {
      tell(figures, names);
    }
    if (!std::cout.flush()) throw std::runtime_error("cannot write the figures");
  } catch (const std::exception& error) {
    std::cerr << "match-figures: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
