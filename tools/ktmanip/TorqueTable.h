#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Joint torques over time, read from comma-separated values: a header line `time,<joint>,...` and
/// a line for each time at which they change, in ascending order. The torques of a line apply from
/// its time until that of the next line. Before the first line, and for joints that the header
/// doesn't name, torques are 0.
class TorqueTable {
 public:
  /// Reads a table. Lines end in LF or CR LF. Fields may be in double quotes; inside them, two
  /// double quotes stand for one. Empty lines are ignored.
  ///
  /// @param text    the table
  /// @param file    its name, for messages
  /// @param joints  names of the joints
  /// @param error   receives a message with file and line if the table has a mistake
  /// @return        true if the table has no mistake
  bool read(std::string_view text, const std::string& file, const std::vector<std::string>& joints,
            std::string& error);
  /// Sets the torques of a time, which must not be before the time of the last call.
  ///
  /// @param slack    a row already applies this much before its time, s
  /// @param torques  one for each joint; if a new row applies, those of the named joints are set
  /// @return         true if a new row applies
  bool advance(double time, double slack, std::vector<double>& torques);

 private:
  std::vector<std::size_t> joints_;  // by column
  std::vector<double> times_;
  std::vector<double> torques_;  // row by row
  std::size_t next_ = 0;         // the first row that doesn't apply yet
};
