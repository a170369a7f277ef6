// The table's bytes: a magic word, the number of states, each state's worth
// as a 32-bit float, and a checksum of all that comes before it, all little
// endian. The checksum lets a damaged or foreign file be told from a table,
// so the game falls back rather than playing on nonsense.
#include <cmath>
#include <cstdint>
#include <cstring>

#include "bit_copy.h"
#include "companion/value_table.h"

namespace quorble::companion {
namespace {

constexpr char kMagic[8] = {'Q', 'R', 'B', 'L', 'V', 'A', 'L', '1'};
constexpr std::size_t kHeaderBytes = sizeof kMagic + 4;
constexpr std::size_t kChecksumBytes = 8;
// No state can be worth this much; a larger number means the bytes are wrong.
constexpr float kWorthCeiling = 100000.0f;

void PutLittleEndian(std::string& out, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>(value >> (8 * i) & 0xff));
}

std::uint64_t GetLittleEndian(const std::string& in, std::size_t at, int bytes) {
  std::uint64_t value = 0;
  for (int i = bytes - 1; i >= 0; --i) {
    value = value << 8 | static_cast<unsigned char>(in[at + static_cast<std::size_t>(i)]);
  }
  return value;
}

// FNV-1a, 64 bits.
std::uint64_t Checksum(const std::string& bytes, std::size_t length) {
  std::uint64_t hash = 0xcbf29ce484222325ull;
  for (std::size_t i = 0; i < length; ++i) {
    hash ^= static_cast<unsigned char>(bytes[i]);
    hash *= 0x100000001b3ull;
  }
  return hash;
}

}  // namespace

std::string SerializeValueTable(const ValueTable& table) {
  const auto& values = table.Values();
  std::string out(kMagic, sizeof kMagic);
  PutLittleEndian(out, values.size(), 4);
  for (float value : values) PutLittleEndian(out, BitCopy<std::uint32_t>(value), 4);
  PutLittleEndian(out, Checksum(out, out.size()), kChecksumBytes);
  return out;
}

std::shared_ptr<const ValueTable> ParseValueTable(const std::string& bytes) {
  const std::size_t states = ValueTable::kStates;
  if (bytes.size() != kHeaderBytes + 4 * states + kChecksumBytes) return nullptr;
  if (std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0) return nullptr;
  if (GetLittleEndian(bytes, sizeof kMagic, 4) != states) return nullptr;
  const std::size_t body = bytes.size() - kChecksumBytes;
  if (GetLittleEndian(bytes, body, kChecksumBytes) != Checksum(bytes, body)) return nullptr;
  std::vector<float> values(states);
  for (std::size_t i = 0; i < states; ++i) {
    const auto raw = static_cast<std::uint32_t>(GetLittleEndian(bytes, kHeaderBytes + 4 * i, 4));
    const float value = BitCopy<float>(raw);
    if (!std::isfinite(value) || value < 0.0f || value > kWorthCeiling) return nullptr;
    values[i] = value;
  }
  return std::make_shared<const ValueTable>(std::move(values));
}

}  // namespace quorble::companion
