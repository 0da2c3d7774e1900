#include "veq/formats/coder.hpp"

#include <stdexcept>

namespace veq {
namespace {

constexpr const char* kDoesNotEncode = "This coder does not encode.";
constexpr const char* kDoesNotDecode = "This coder does not decode.";

}  // namespace

void VEQCoder::encodeBool(bool, std::string_view) { throw std::logic_error(kDoesNotEncode); }

void VEQCoder::encodeNumberArray(const VEQNumberArray&, std::string_view) {
  throw std::logic_error(kDoesNotEncode);
}

void VEQCoder::encodePropertyTable(const PropertyTable&, std::string_view) {
  throw std::logic_error(kDoesNotEncode);
}

std::optional<bool> VEQCoder::decodeBool(std::string_view) {
  throw std::logic_error(kDoesNotDecode);
}

Owned<VEQNumberArray> VEQCoder::decodeNumberArray(std::string_view) {
  throw std::logic_error(kDoesNotDecode);
}

std::optional<PropertyTable> VEQCoder::decodePropertyTable(std::string_view) {
  throw std::logic_error(kDoesNotDecode);
}

}  // namespace veq
