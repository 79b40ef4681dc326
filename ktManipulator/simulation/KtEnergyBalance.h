#pragma once

/// What has changed the mechanical energy of a system while it was simulated, J. Each entry is what
/// it has added to the energy; losses are negative.
struct KtEnergyBalance {
  double before = 0.0;   ///< The energy at the start.
  double after = 0.0;    ///< The energy now.
  double torques = 0.0;  ///< The work of joint torques; of flexible gears what they gave to joints.
  double forces = 0.0;   ///< The work of external forces, and of those between links.
  double springs = 0.0;  ///< The work of springs that have no potential, as they couple joints.
  double friction = 0.0;  ///< Friction in actuators, and what gears keep of the torques.
  double dampers = 0.0;   ///< Dampers at joints.
  double limits = 0.0;    ///< Stoppers, and joints that were stopped at limits.
  double rates = 0.0;     ///< Joint rates that were cut to the greatest.
  double stops = 0.0;     ///< Positions that were taken back: stopping criteria, collisions.

  /// The change of the energy.
  double change() const noexcept { return after - before; }
  /// What all entries have added together.
  double explained() const noexcept {
    return torques + forces + springs + friction + dampers + limits + rates + stops;
  }
  /// What is left: the error of the integrator, which a shorter step makes smaller.
  double remainder() const noexcept { return change() - explained(); }
  /// Whether nothing but the integrator has changed the energy.
  bool isIntegratorAlone() const noexcept {
    return torques == 0.0 && forces == 0.0 && springs == 0.0 && friction == 0.0 && dampers == 0.0 &&
           limits == 0.0 && rates == 0.0 && stops == 0.0;
  }
};
