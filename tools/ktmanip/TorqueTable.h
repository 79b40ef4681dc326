#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Joint torques over time, read from comma-separated values: a header line `time,<joint>,...` and
/// a line for each time at which they change, in ascending order. Torques hold from their time on
/// until the next; before the first, and for joints that aren't named, they are 0.
class TorqueTable {
 public:
  /// Reads a table. Lines end in LF or CR LF; fields may stand in double quotes, in which two of
  /// them make one; empty lines don't count.
  ///
  /// @param text    the table
  /// @param file    its name, for messages
  /// @param joints  names of the joints
  /// @param error   receives what is wrong, with file and line
  /// @return        whether nothing is
  bool read(std::string_view text, const std::string& file, const std::vector<std::string>& joints,
            std::string& error);
  /// Goes on to the torques of a time, which must not be before that of the last call.
  ///
  /// @param slack    a row holds also this much before its time
  /// @param torques  one for each joint, of which those that are named are set if they change
  /// @return         whether they change
  bool advance(double time, double slack, std::vector<double>& torques);

 private:
  std::vector<std::size_t> joints_;  // by column
  std::vector<double> times_;
  std::vector<double> torques_;  // row by row
  std::size_t next_ = 0;         // the first row that doesn't hold yet
};
