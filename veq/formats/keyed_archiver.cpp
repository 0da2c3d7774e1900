#include "veq/formats/keyed_archiver.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "veq/formats/internal/cbor_reader.hpp"
#include "veq/formats/internal/cbor_writer.hpp"
#include "veq/formats/internal/property_cbor.hpp"

namespace veq {

using internal::CborMajor;
using internal::CborReader;
using internal::CborWriter;

// The head of the map states the number of entries and so is known last; the entries begin behind
// room for the longest one, and the head is put right before them.
VEQKeyedArchiver::VEQKeyedArchiver() : out_(std::make_unique<CborWriter>()) {
  out_->extend(CborWriter::kHeadRoom);
  begin_ = out_->placeHead(CborWriter::kHeadRoom, CborMajor::kMap, 0);
}

VEQKeyedArchiver::~VEQKeyedArchiver() = default;

template <class WriteValue>
void VEQKeyedArchiver::encodeEntry(std::string_view key, WriteValue writeValue) {
  const auto [place, isNew] = keys_.emplace(key);
  if (!isNew) throw std::invalid_argument("The key is already in the archive.");
  const std::uint64_t before = out_->size();
  try {
    out_->writeString(key);
    writeValue();
  } catch (...) {
    out_->truncate(before);
    keys_.erase(place);
    throw;
  }
  begin_ = out_->placeHead(CborWriter::kHeadRoom, CborMajor::kMap, keys_.size());
}

void VEQKeyedArchiver::encodeBool(bool value, std::string_view key) {
  encodeEntry(key, [&] { out_->writeBool(value); });
}

void VEQKeyedArchiver::encodeNumberArray(const VEQNumberArray& numbers, std::string_view key) {
  encodeEntry(key, [&] { out_->writeNumbers(numbers); });
}

void VEQKeyedArchiver::encodePropertyTable(const PropertyTable& table, std::string_view key) {
  encodeEntry(key, [&] { internal::writeTable(*out_, table); });
}

void VEQKeyedArchiver::encodeCount(std::uint64_t count, std::string_view key) {
  encodeEntry(key, [&] { out_->writeHead(CborMajor::kUnsigned, count); });
}

std::string_view VEQKeyedArchiver::bytes() const { return out_->bytes().substr(begin_); }

VEQKeyedUnarchiver::VEQKeyedUnarchiver(std::string_view bytes) : valid_(index(bytes)) {
  if (!valid_) entries_.clear();
}

bool VEQKeyedUnarchiver::index(std::string_view bytes) {
  CborReader in(bytes);
  const auto head = in.readHead();
  if (!head || head->major != CborMajor::kMap) return false;
  for (std::uint64_t i = 0; i < head->argument; ++i) {
    const auto key = in.readString();
    if (!key) return false;
    const std::string_view value = in.rest();
    if (!in.skipItem()) return false;
    entries_.push_back({*key, value.substr(0, value.size() - in.rest().size())});
  }
  if (!in.atEnd()) return false;
  std::sort(entries_.begin(), entries_.end(),
            [](const Entry& a, const Entry& b) { return a.key < b.key; });
  const auto same = [](const Entry& a, const Entry& b) { return a.key == b.key; };
  return std::adjacent_find(entries_.begin(), entries_.end(), same) == entries_.end();
}

std::string_view VEQKeyedUnarchiver::valueOf(std::string_view key) const {
  const auto at = std::lower_bound(entries_.begin(), entries_.end(), key,
                                   [](const Entry& e, std::string_view k) { return e.key < k; });
  return at != entries_.end() && at->key == key ? at->value : std::string_view();
}

std::optional<bool> VEQKeyedUnarchiver::decodeBool(std::string_view key) {
  const auto head = CborReader(valueOf(key)).readHead();
  if (!head) return std::nullopt;
  if (head->isSimple(internal::kCborTrue)) return true;
  if (head->isSimple(internal::kCborFalse)) return false;
  return std::nullopt;
}

Owned<VEQNumberArray> VEQKeyedUnarchiver::decodeNumberArray(std::string_view key) {
  CborReader in(valueOf(key));
  const auto head = in.readHead();
  return head ? in.readNumbers(*head) : nullptr;
}

std::optional<PropertyTable> VEQKeyedUnarchiver::decodePropertyTable(std::string_view key) {
  CborReader in(valueOf(key));
  return internal::readTable(in);
}

std::optional<std::uint64_t> VEQKeyedUnarchiver::decodeCount(std::string_view key) const {
  const auto head = CborReader(valueOf(key)).readHead();
  if (!head || head->major != CborMajor::kUnsigned) return std::nullopt;
  return head->argument;
}

}  // namespace veq
