#pragma once

#include <string>
#include <vector>

/// @file
/// What other libraries say of a robot in a URDF file.

/// The state that is asked for: at rest in the base's frame, under 9.81 m/s^2 along -z.
struct RobotQuestion {
  std::string file;
  bool freeBase = false;
  std::vector<std::string> links;  ///< Names of the moving links; lists are in their order.
  std::vector<double> q, qd, tau;
};

/// The answers, or why there are none.
struct RobotAnswers {
  std::string whyNot;
  double mass = -1.0;  ///< Negative if it isn't told.
  std::vector<double> gravityTorques;
  std::vector<double> massMatrix;  ///< Row by row.
  /// Accelerations of the joints, behind them those of a free base: linear, angular.
  std::vector<double> accelerations;
};

/// The Orocos Kinematics and Dynamics Library.
RobotAnswers askKdl(const RobotQuestion& question);
/// MuJoCo, which reads the file by itself.
RobotAnswers askMujoco(const RobotQuestion& question);
