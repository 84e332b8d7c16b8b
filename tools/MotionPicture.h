#ifndef QUOLNARIS_TOOLS_MOTIONPICTURE_H_
#define QUOLNARIS_TOOLS_MOTIONPICTURE_H_

#include <string>
#include <vector>

#include "MotionRecord.h"

// Draws a motion as an SVG document: a strip of stick figures seen from the left and, below each,
// from the front, with the time under it; and the robot's path over the ground with its heading.
//
// `title` and `subtitle` stand above. A figure is drawn for each sample that has one.
std::string motionPicture(const std::vector<MotionSample>& samples, const std::string& title,
                          const std::string& subtitle);

#endif  // QUOLNARIS_TOOLS_MOTIONPICTURE_H_
