#pragma once

#include <map>
#include <string>
#include <vector>

/// @file
/// What other libraries say of a robot in a URDF file.

/// The state that is asked for: at rest in the base's frame, under 9.81 m/s^2 along -z.
struct RobotQuestion {
  std::string file;
  bool freeBase = false;
  std::vector<std::string> links;  ///< Names of the moving links; lists are in their order.
  std::vector<double> q, qd, qdd, tau;
};

/// The answers, by what they answer, or why there are none: lists of numbers, links after each
/// other, matrices row by row, what is of a free base behind what is of the joints.
struct RobotAnswers {
  std::string whyNot;
  std::map<std::string, std::vector<double>> lists;
};

/// The Orocos Kinematics and Dynamics Library.
RobotAnswers askKdl(const RobotQuestion& question);
/// MuJoCo, which reads the file by itself.
RobotAnswers askMujoco(const RobotQuestion& question);
