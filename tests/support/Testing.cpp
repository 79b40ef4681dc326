#include "support/Testing.h"

namespace {

// Starts every test with the same random sequence, whatever order the tests run in.
class Seeding : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { generator().seed(20240517); }
};

const bool isSeeding = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new Seeding);
  return true;
}();

}  // namespace
