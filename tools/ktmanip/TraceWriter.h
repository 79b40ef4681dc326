#pragma once

#include <cstdio>
#include <string>

#include "ktManipulator/simulation/KtSimulation.h"

/// Writes how a simulation goes on as comma-separated values (RFC 4180): a header line, and a line
/// for each state, with numbers in the shortest form that reads back to the same bits.
class TraceWriter {
 public:
  TraceWriter() = default;
  ~TraceWriter();
  TraceWriter(const TraceWriter&) = delete;
  TraceWriter& operator=(const TraceWriter&) = delete;

  /// Opens a file and writes the header.
  ///
  /// @return false if the file can't be opened
  bool open(const std::string& file, const KtSimulation& simulation);
  /// Writes the present state, and what the step to it hit.
  void write(KtSimulation& simulation);
  /// Writes what is left.
  ///
  /// @return whether all that was given has arrived
  bool close();

 private:
  void flush();
  void addText(const std::string& text);

  std::FILE* file_ = nullptr;
  std::string buffer_, hits_;
  bool good_ = true;
};
