#include "ktManipulator/state/KtStateBinary.h"

#include <algorithm>
#include <array>
#include <span>

namespace Kt::detail {

namespace {

// Lists of this length pass through the stack in one go; most mechanisms have fewer joints.
constexpr std::size_t kBlock = 512;
using Block = std::array<double, kBlock>;

bool readBytes(std::istream& stream, void* target, std::size_t bytes) {
  const auto wanted = static_cast<std::streamsize>(bytes);
  stream.read(static_cast<char*>(target), wanted);
  return stream.gcount() == wanted;
}

}  // namespace

bool readBinaryCount(std::istream& stream, KtU32& count) {
  KtU32 arrived = 0;
  if (!readBytes(stream, &arrived, sizeof arrived)) return false;
  count = arrived;
  return true;
}

void writeBinaryCount(std::ostream& stream, KtU32 count) {
  stream.write(reinterpret_cast<const char*>(&count), sizeof count);
}

bool readBinaryList(std::istream& stream, KtXmlVectorType<KtXmlBasicType<double>>& list) {
  KtU32 count = 0;
  if (!readBinaryCount(stream, count)) return false;
  Block block;
  if (count <= kBlock) {
    if (!readBytes(stream, block.data(), count * sizeof(double))) return false;
    list.resize(count);
    std::copy_n(block.begin(), count, list.elements().begin());
    return true;
  }
  std::vector<KtXmlBasicType<double>> arrived;
  while (arrived.size() < count) {
    const std::size_t size = std::min(kBlock, count - arrived.size());
    if (!readBytes(stream, block.data(), size * sizeof(double))) return false;
    arrived.insert(arrived.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(size));
  }
  list.elements().swap(arrived);
  return true;
}

void writeBinaryList(std::ostream& stream, const KtXmlVectorType<KtXmlBasicType<double>>& list) {
  writeBinaryCount(stream, list.size());
  Block block;
  std::span<const KtXmlBasicType<double>> rest = list.elements();
  while (!rest.empty()) {
    const std::size_t size = std::min(kBlock, rest.size());
    std::copy_n(rest.begin(), size, block.begin());
    stream.write(reinterpret_cast<const char*>(block.data()),
                 static_cast<std::streamsize>(size * sizeof(double)));
    rest = rest.subspan(size);
  }
}

}  // namespace Kt::detail
