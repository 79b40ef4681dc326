#pragma once

/// Version of the library's interface, "major.minor.patch".
inline constexpr const char* ktVersion = "3.0.0";
