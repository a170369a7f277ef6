// The local time of day and date, for the platforms on a real clock.
#pragma once

#include <chrono>
#include <ctime>

#include "platform/platform.h"

namespace quorble {

inline std::tm LocalNow(std::chrono::system_clock::time_point now) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&seconds, &local);
  return local;
}

// Seconds since local midnight, with the fraction of the second.
inline double SecondsSinceMidnight() {
  const auto now = std::chrono::system_clock::now();
  const std::tm local = LocalNow(now);
  const auto sinceSecond = now - std::chrono::floor<std::chrono::seconds>(now);
  const double fraction = std::chrono::duration<double>(sinceSecond).count();
  return local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec + fraction;
}

inline Date LocalToday() {
  const std::tm local = LocalNow(std::chrono::system_clock::now());
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday};
}

}  // namespace quorble
