/// \file
/// The keyed archive: one CBOR map, as docs/formats/archive.md describes it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "veq/base/export.hpp"
#include "veq/formats/coder.hpp"

namespace veq {

namespace internal {
class CborWriter;
}

/// Encodes into memory. A key that is already in the archive throws std::invalid_argument.
/// \ingroup files
class VEQ_EXPORT VEQKeyedArchiver final : public VEQCoder {
 public:
  /// An empty archive.
  VEQKeyedArchiver();
  ~VEQKeyedArchiver() override;

  void encodeBool(bool value, std::string_view key) override;
  void encodeNumberArray(const VEQNumberArray& numbers, std::string_view key) override;
  void encodePropertyTable(const PropertyTable& table, std::string_view key) override;
  /// A number of things, as a plain CBOR integer.
  void encodeCount(std::uint64_t count, std::string_view key);

  /// The archive of all entries so far, complete and valid until the next one is encoded.
  [[nodiscard]] std::string_view bytes() const;

 private:
  template <class WriteValue>
  void encodeEntry(std::string_view key, WriteValue writeValue);

  std::unique_ptr<internal::CborWriter> out_;
  std::set<std::string, std::less<>> keys_;
  std::uint64_t begin_;  // of the archive in the writer's bytes
};

/// Decodes from bytes that must outlive it. Bytes that are no archive as a whole, from the first to
/// the last, hold no entries. Takes memory for its keys, and for an entry when that is decoded; no
/// length or count is believed before the bytes for it are there. Made in O(length), except that
/// arrays of numbers take no time.
/// \ingroup files
class VEQ_EXPORT VEQKeyedUnarchiver final : public VEQCoder {
 public:
  /// Reads the keys; see isValid().
  explicit VEQKeyedUnarchiver(std::string_view bytes);

  /// Whether the bytes are an archive.
  [[nodiscard]] bool isValid() const { return valid_; }

  [[nodiscard]] std::optional<bool> decodeBool(std::string_view key) override;
  [[nodiscard]] Owned<VEQNumberArray> decodeNumberArray(std::string_view key) override;
  [[nodiscard]] std::optional<PropertyTable> decodePropertyTable(std::string_view key) override;
  /// An integer from 0 on; nothing where there is none under the key.
  [[nodiscard]] std::optional<std::uint64_t> decodeCount(std::string_view key) const;
  /// Whether there is an entry of any type under the key.
  [[nodiscard]] bool has(std::string_view key) const { return !valueOf(key).empty(); }

 private:
  struct Entry {
    std::string_view key;
    std::string_view value;
  };

  [[nodiscard]] bool index(std::string_view bytes);
  [[nodiscard]] std::string_view valueOf(std::string_view key) const;

  std::vector<Entry> entries_;  // sorted by key
  bool valid_;
};

}  // namespace veq
