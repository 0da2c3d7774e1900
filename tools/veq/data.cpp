#include "data.hpp"

#include <charconv>
#include <cmath>
#include <ostream>

#include <veq/veq.hpp>

namespace veq::tool {
namespace {

std::string quotedForJson(const std::string& text) {
  constexpr char kDigits[] = "0123456789abcdef";
  // What is no UTF-8 is taken for ISO-8859-1, lest the whole answer be none.
  const bool plain = isUtf8(text);
  std::string quoted = "\"";
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
      quoted += '\\';
      quoted += character;
    } else if (byte < 0x20 || byte == 0x7f || (byte >= 0x80 && !plain)) {
      quoted += std::string("\\u00") + kDigits[byte >> 4] + kDigits[byte & 0xf];
    } else {
      quoted += character;
    }
  }
  return quoted + '"';
}

template <class Float>
std::string shortest(Float value) {
  char digits[64];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
  return std::string(std::begin(digits), end);
}

}  // namespace

const std::vector<std::string>& answerWords() {
  static const std::vector<std::string> words{"table", "csv", "json"};
  return words;
}

Data::Data(const std::string& text) : scalar_(quotedForJson(text)), plain_(text) {}

Data::Data(double value) {
  if (std::isfinite(value)) scalar_ = plain_ = shortest(value);
}

Data::Data(float value) {
  if (std::isfinite(value)) scalar_ = plain_ = shortest(value);
}

Data Data::object() {
  Data data;
  data.kind_ = Kind::kObject;
  return data;
}

Data Data::list() {
  Data data;
  data.kind_ = Kind::kList;
  return data;
}

Data& Data::set(std::string key, Data value) {
  keys_.push_back(std::move(key));
  values_.push_back(std::move(value));
  return *this;
}

Data& Data::add(Data value) {
  values_.push_back(std::move(value));
  return *this;
}

void Data::writeJson(std::ostream& out) const {
  writeJson(out, "");
  out << '\n';
}

void Data::writeJson(std::ostream& out, const std::string& indent) const {
  if (kind_ == Kind::kScalar) {
    out << scalar_;
    return;
  }
  const bool isObject = kind_ == Kind::kObject;
  out << (isObject ? '{' : '[');
  for (std::size_t i = 0; i < values_.size(); ++i) {
    out << (i == 0 ? "\n" : ",\n") << indent << "  ";
    if (isObject) out << quotedForJson(keys_[i]) << ": ";
    values_[i].writeJson(out, indent + "  ");
  }
  if (!values_.empty()) out << '\n' << indent;
  out << (isObject ? '}' : ']');
}

void Data::writeCsv(std::ostream& out) const {
  out << "key,value\n";
  writeCsv(out, "");
}

void Data::writeCsv(std::ostream& out, const std::string& key) const {
  if (kind_ == Kind::kScalar) {
    out << csvField(key) << ',' << csvField(plain_) << '\n';
    return;
  }
  for (std::size_t i = 0; i < values_.size(); ++i) {
    const std::string name = kind_ == Kind::kObject ? keys_[i] : std::to_string(i);
    values_[i].writeCsv(out, key.empty() ? name : key + "." + name);
  }
}

std::string csvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"') quoted += '"';
    quoted += character;
  }
  return quoted + '"';
}

void Records::writeCsv(std::ostream& out) const {
  for (std::size_t i = 0; i < header_.size(); ++i) {
    out << (i == 0 ? "" : ",") << csvField(header_[i]);
  }
  out << '\n';
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      out << (i == 0 ? "" : ",") << csvField(row[i].plain());
    }
    out << '\n';
  }
}

Data Records::asList() const {
  Data list = Data::list();
  for (const auto& row : rows_) {
    Data record = Data::object();
    for (std::size_t i = 0; i < row.size(); ++i) record.set(header_[i], row[i]);
    list.add(std::move(record));
  }
  return list;
}

}  // namespace veq::tool
