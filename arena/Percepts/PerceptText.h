#ifndef QUOLNARIS_PERCEPTS_PERCEPTTEXT_H_
#define QUOLNARIS_PERCEPTS_PERCEPTTEXT_H_

#include <Eigen/Core>
#include <string>

namespace arena {

// Appends a real number as percepts spell it: fixed notation with exactly two decimals, rounded to
// the nearest (ties of the exact binary value to even), a minus sign also on -0.00.
void appendReal(std::string& text, double value);

// The same for three numbers, with single spaces between them.
void appendReals(std::string& text, const Eigen::Vector3d& values);

void appendInteger(std::string& text, int value);

}  // namespace arena

#endif  // QUOLNARIS_PERCEPTS_PERCEPTTEXT_H_
