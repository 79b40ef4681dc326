#include "TraceWriter.h"

#include "Numbers.h"

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 18;

// Ends what stands at the end of the buffer as a field of a record.
void appendField(std::string& buffer, double value) {
  buffer += ',';
  appendNumber(buffer, value);
}

}  // namespace

TraceWriter::~TraceWriter() {
  close();
}

bool TraceWriter::open(const std::string& file, const KtSimulation& simulation) {
  file_ = std::fopen(file.c_str(), "wb");
  if (file_ == nullptr) return false;
  std::setvbuf(file_, nullptr, _IONBF, 0);  // there is a buffer here
  buffer_.reserve(2 * kBufferSize);
  buffer_ = "time";
  const auto& joints = simulation.joints();
  const auto& manipulators = simulation.system().system().manipulators();
  std::size_t j = 0;
  for (KtU32 m = 0; m < manipulators.size(); ++m) {
    for (; j < joints.size() && joints[j].manipulator == m; ++j) {
      for (const char* quantity : {".q", ".qd", ".qdd"}) addText(joints[j].name + quantity);
    }
    const std::string base = manipulators.size() > 1 ? manipulators[m].label() + "/base" : "base";
    for (const char* component : {".x", ".y", ".z", ".qw", ".qx", ".qy", ".qz"}) {
      addText(base + component);
    }
  }
  buffer_ += ",kineticEnergy,potentialEnergy,limitsHit\n";
  return true;
}

void TraceWriter::addText(const std::string& text) {
  buffer_ += ',';
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    buffer_ += text;
    return;
  }
  buffer_ += '"';
  for (const char c : text) buffer_.append(c == '"' ? 2 : 1, c);
  buffer_ += '"';
}

void TraceWriter::write(KtSimulation& simulation) {
  appendNumber(buffer_, simulation.state().time());
  const auto& joints = simulation.joints();
  const auto& manipulators = simulation.system().system().manipulators();
  hits_.clear();
  for (const KtU32 hit : simulation.lastStep().limits) {
    if (!hits_.empty()) hits_ += ';';
    hits_ += joints[hit].name;
  }
  std::size_t j = 0;
  for (KtU32 m = 0; m < manipulators.size(); ++m) {
    KtManipulatorActiveState& active = simulation.active(m);
    const auto& q = active.positionState().jointPositions().elements();
    const auto& qd = active.velocityState().jointVelocities().elements();
    const auto& qdd = simulation.acceleration(m).jointAccelerations().elements();
    for (; j < joints.size() && joints[j].manipulator == m; ++j) {
      const KtU32 i = joints[j].link;
      for (const double value : {q[i].value(), qd[i].value(), qdd[i].value()}) {
        appendField(buffer_, value);
      }
    }
    const KtCoordinateSystemTransformation& base =
        manipulators[m].primaryFrameInSystem(active.activePositionState());
    const KtVector& place = base.translation();
    for (const double value : {place.x, place.y, place.z}) appendField(buffer_, value);
    for (unsigned k = 0; k < 4; ++k) appendField(buffer_, base.orientation()[k]);
  }
  appendField(buffer_, simulation.kineticEnergy());
  appendField(buffer_, simulation.potentialEnergy());
  addText(hits_);
  buffer_ += '\n';
  if (buffer_.size() > kBufferSize) flush();
}

void TraceWriter::flush() {
  if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) good_ = false;
  buffer_.clear();
}

bool TraceWriter::close() {
  if (file_ == nullptr) return good_;
  flush();
  if (std::fclose(file_) != 0) good_ = false;
  file_ = nullptr;
  return good_;
}
