#include "platform/web/wav.h"

#include <cstdint>

#include "little_endian.h"

namespace quorble::web {
namespace {

constexpr int kPcm = 1;
constexpr int kExtensible = 0xFFFE;

std::uint32_t Little(std::string_view bytes, size_t at, int width) {
  return ReadLittleEndian(bytes, at, width);
}

// One sample of `width` bytes: 8-bit PCM is unsigned, wider is signed.
float Sample(std::string_view bytes, size_t at, int width) {
  const std::uint32_t raw = Little(bytes, at, width);
  if (width == 1) return (static_cast<float>(raw) - 128.0f) / 128.0f;
  const int shift = 32 - 8 * width;
  const auto value = static_cast<std::int32_t>(raw << shift);
  return static_cast<float>(value) / 2147483648.0f;
}

struct Chunks {
  std::string_view format;
  std::string_view data;
};

std::optional<Chunks> FindChunks(std::string_view bytes) {
  if (bytes.size() < 12 || bytes.substr(0, 4) != "RIFF" || bytes.substr(8, 4) != "WAVE") {
    return std::nullopt;
  }
  Chunks found;
  for (size_t at = 12; at + 8 <= bytes.size();) {
    const std::string_view id = bytes.substr(at, 4);
    const size_t size = Little(bytes, at + 4, 4);
    // A data chunk cut short by a truncated file keeps what is there.
    const std::string_view body = bytes.substr(at + 8, size);
    if (id == "fmt ") found.format = body;
    if (id == "data") found.data = body;
    if (size > bytes.size() - at - 8) break;
    at += 8 + size + (size & 1);
  }
  if (found.format.size() < 16 || found.data.empty()) return std::nullopt;
  return found;
}

}  // namespace

std::optional<WavSound> ReadWav(std::string_view bytes) {
  const auto chunks = FindChunks(bytes);
  if (!chunks) return std::nullopt;
  const std::string_view format = chunks->format;
  const auto tag = static_cast<int>(Little(format, 0, 2));
  const auto channels = static_cast<int>(Little(format, 2, 2));
  const auto rate = static_cast<int>(Little(format, 4, 4));
  const auto bits = static_cast<int>(Little(format, 14, 2));
  if ((tag != kPcm && tag != kExtensible) || channels < 1 || channels > 2 || rate < 1000 ||
      rate > 384000 || bits % 8 != 0 || bits < 8 || bits > 32) {
    return std::nullopt;
  }
  WavSound sound{rate, channels, channels * bits / 8, {}};
  const size_t width = static_cast<size_t>(bits / 8);
  const size_t count = chunks->data.size() / width / static_cast<size_t>(channels);
  sound.frames.reserve(count * static_cast<size_t>(channels));
  for (size_t at = 0; at < count * static_cast<size_t>(channels); ++at) {
    sound.frames.push_back(Sample(chunks->data, at * width, bits / 8));
  }
  return sound;
}

}  // namespace quorble::web
