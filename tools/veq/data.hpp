/// \file
/// Answers for other programs: values, JSON and CSV.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace veq::tool {

/// How a command answers.
enum class Answer { kTable, kCsv, kJson };

/// The words of the option --format, in the order of Answer.
[[nodiscard]] const std::vector<std::string>& answerWords();

/// A value as JSON has them: a text, a number, true or false, null, an object or a list.
class Data {
 public:
  /// Null.
  Data() = default;
  Data(const std::string& text);
  Data(const char* text) : Data(std::string(text)) {}
  Data(bool value) : scalar_(value ? "true" : "false"), plain_(scalar_) {}
  Data(std::uint64_t value) : scalar_(std::to_string(value)), plain_(scalar_) {}
  Data(std::int64_t value) : scalar_(std::to_string(value)), plain_(scalar_) {}
  /// The shortest number that reads back the same; null where it is not finite.
  Data(double value);
  /// The same for a 32-bit float.
  Data(float value);

  [[nodiscard]] static Data object();
  [[nodiscard]] static Data list();

  /// For objects, whose members keep their order.
  Data& set(std::string key, Data value);
  /// For lists.
  Data& add(Data value);

  /// As JSON, in lines and indented, with a line end.
  void writeJson(std::ostream& out) const;
  /// As CSV lines "key,value"; keys of objects inside are joined with a full stop. Null has no
  /// value.
  void writeCsv(std::ostream& out) const;

  /// As a field of CSV, not quoted.
  [[nodiscard]] const std::string& plain() const { return plain_; }

 private:
  enum class Kind { kScalar, kObject, kList };

  void writeJson(std::ostream& out, const std::string& indent) const;
  void writeCsv(std::ostream& out, const std::string& key) const;

  Kind kind_ = Kind::kScalar;
  std::string scalar_ = "null";  // as JSON
  std::string plain_;            // as people write it
  std::vector<std::string> keys_;
  std::vector<Data> values_;
};

/// The text with quotes around it where CSV asks for them.
[[nodiscard]] std::string csvField(const std::string& text);

/// A table whose columns have names, for CSV, and for JSON as a list of objects.
class Records {
 public:
  explicit Records(std::vector<std::string> header) : header_(std::move(header)) {}

  /// One value for each column.
  void add(std::vector<Data> row) { rows_.push_back(std::move(row)); }

  void writeCsv(std::ostream& out) const;
  [[nodiscard]] Data asList() const;

 private:
  std::vector<std::string> header_;
  std::vector<std::vector<Data>> rows_;
};

}  // namespace veq::tool
