/// @file
/// What every test begins with: the frameworks, the library, and short names for its classes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <numbers>
#include <numeric>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

using namespace sampling;
using testing::ElementsAre;
using testing::HasSubstr;

using Arm = KtIndividualManipulator;
using Link = KtManipulatorLink;
using Mass = KtRigidBodyMassProperties;
using T = KtCoordinateSystemTransformation;
using Active = KtManipulatorActiveState;

/// What is in a file.
inline std::string textOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream) << file;
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// One of the example models.
inline KtStatedSystem modelOf(const std::string& name) {
  KtStatedSystem system;
  EXPECT_TRUE(KtXmlReader::readFile(KT_SOURCE_FOLDER "/examples/models/" + name + ".xml", system));
  return system;
}

using Real = KtXmlBasicType<double>;
using Text = KtXmlBasicType<std::string>;
using U32 = KtXmlBasicType<KtU32>;
