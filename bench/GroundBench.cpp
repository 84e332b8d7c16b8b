// The ground floor: what hot code does many times a cycle.

#include <benchmark/benchmark.h>

#include <string>

#include "Command/Command.h"
#include "Mathematics/Matrix.h"
#include "Mathematics/Vector.h"
#include "Utilities/Config.h"
#include "Utilities/Logger.h"

namespace {

// A store like that of the deployment: a dozen files of a group with a dozen keys.
void fillConfig() {
  for (const char* file : {"Agent", "Formation", "WorldModel", "decision", "forWalk", "backWalk",
                           "sideWalk", "omniWalk", "omniBackWalk", "omniSideWalk", "Turn", "TAB"}) {
    config.add(file);
    config[file].addGroup("forwalk");
    for (int i = 1; i <= 12; ++i) {
      config[file]["forwalk"].add("p" + std::to_string(i), "0.1 0.2 0.3 0.4");
    }
    config[file]["forwalk"].add("Xankle", "0.1 0.2 0.3 0.4");
  }
}

void lookUpFloat(benchmark::State& state) {
  fillConfig();
  for (auto _ : state) {
    benchmark::DoNotOptimize(config["forWalk"]["forwalk"]["Xankle"][2].asFloat());
  }
}
BENCHMARK(lookUpFloat);

void readFloatOfAKnownValue(benchmark::State& state) {
  fillConfig();
  const ConfigValue& value = config["forWalk"]["forwalk"]["Xankle"];
  for (auto _ : state) benchmark::DoNotOptimize(value[2].asFloat());
}
BENCHMARK(readFloatOfAKnownValue);

Matrix<4, 4> turned() {
  Matrix<4, 4> m;
  m.identityMatrix();
  m.rotateX(20);
  m.rotateZ(-30);
  m.trans(1, 2, 3);
  return m;
}

void matrixProduct(benchmark::State& state) {
  const Matrix<4, 4> a = turned();
  const Matrix<4, 4> b = turned();
  Matrix<4, 4> product;
  for (auto _ : state) {
    product = a * b;
    benchmark::DoNotOptimize(product(0, 0));
  }
}
BENCHMARK(matrixProduct);

void matrixStep(benchmark::State& state) {
  Matrix<4, 4> m = turned();
  for (auto _ : state) {
    m.rotateX(1);
    benchmark::DoNotOptimize(m(0, 0));
  }
}
BENCHMARK(matrixStep);

void matrixInverse(benchmark::State& state) {
  const Matrix<4, 4> m = turned();
  for (auto _ : state) benchmark::DoNotOptimize(m.inverseMatrix());
}
BENCHMARK(matrixInverse);

void matrixTimesVector(benchmark::State& state) {
  const Matrix<4, 4> m = turned();
  Vector v(1, 2, 3);
  for (auto _ : state) benchmark::DoNotOptimize(v = m * v);
}
BENCHMARK(matrixTimesVector);

void buildMessageOfACycle(benchmark::State& state) {
  const std::string names[] = {"he1",  "he2",  "lae1", "lae2", "lae3", "lae4", "rae1", "rae2",
                               "rae3", "rae4", "lle1", "lle2", "lle3", "lle4", "lle5", "lle6",
                               "lle7", "rle1", "rle2", "rle3", "rle4", "rle5", "rle6", "rle7"};
  Command command;
  for (auto _ : state) {
    float speed = -3.14159f;
    for (const std::string& name : names) command.addJoint(name, speed += 0.27f);
    command.setFinal();
    benchmark::DoNotOptimize(command.getFinal().data());
    command.clear();
  }
}
BENCHMARK(buildMessageOfACycle);

void writeToAnUnknownLog(benchmark::State& state) {
  for (auto _ : state) logger["Unknown"] << "fasele = " << 1.5 << std::endl;
}
BENCHMARK(writeToAnUnknownLog);

}  // namespace

BENCHMARK_MAIN();
