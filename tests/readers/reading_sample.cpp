// Says what is read from files, as JSON with one member a line, for those who judge it:
//   reading_sample dump FILE...      what each file gives; "--indices FILE" takes its ids for
//   indices reading_sample convert IN OUT    reads one file and writes another, CSV with
//   OUT.vertices beside it
#include <cstdint>
#include <iostream>
#include <string>
#include <string_view>

#include <veq/readers/reading.hpp>
#include <veq/veq.hpp>

namespace {

using namespace veq;

std::string quoted(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string result = "\"";
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == '"' || byte == '\\') result += '\\';
    if (code < 0x20) {
      result += std::string("\\u00") + kDigits[code >> 4] + kDigits[code & 15];
    } else {
      result += byte;
    }
  }
  return result + '"';
}

std::string valueText(const PropertyValue& value) {
  if (value.isNull()) return "null";
  if (value.string()) return quoted(*value.string());
  // What JSON has no number for, such as nan, stands in quotes.
  const std::string text = value.text();
  const bool plain = value.number() && text.find_first_not_of("+-.0123456789e") == text.npos;
  return plain ? text : quoted(text);
}

std::string_view kindOf(const PropertyColumn& column) {
  switch (column.kind()) {
    case PropertyColumn::Kind::kGeneric:
      return "values";
    case PropertyColumn::Kind::kVector2d:
      return "vectors 2D";
    case PropertyColumn::Kind::kVector3d:
      return "vectors 3D";
    default:
      break;
  }
  switch (static_cast<const VEQNumberArray&>(column).elementType()) {
    case ElementType::kDouble:
      return "doubles";
    case ElementType::kFloat:
      return "floats";
    case ElementType::kInteger:
      return "integers";
    default:
      return "unsigned";
  }
}

template <class TextOf>
std::string listOf(std::uint64_t count, TextOf textOf) {
  std::string text = "[";
  for (std::uint64_t i = 0; i < count; ++i) text += (i > 0 ? ", " : "") + textOf(i);
  return text + "]";
}

std::string listOf(const PropertyColumn& column) {
  return listOf(column.count(),
                [&](std::uint64_t i) { return valueText(column.objectAtIndex(i)); });
}

class Object {
 public:
  void add(const std::string& key, const std::string& value) {
    text_ += (text_.empty() ? " " : ",\n ") + quoted(key) + ": " + value;
  }
  [[nodiscard]] std::string text() const { return "{\n" + text_ + "\n}\n"; }

 private:
  std::string text_;
};

void addNotes(Object& object, const Reading& reading) {
  constexpr std::string_view kKinds[] = {"taken", "repaired", "left out"};
  for (const Note& note : reading.notes()) {
    object.add("note", quoted(std::string(kKinds[static_cast<std::size_t>(note.kind)]) + " line " +
                              std::to_string(note.place.line) + " x" + std::to_string(note.count) +
                              ": " + note.text));
  }
}

void addColumns(Object& object, const std::string& whose, const PropertyTable& table) {
  for (const auto& [key, column] : table) {
    object.add(whose + " " + key + " (" + std::string(kindOf(*column)) + ")", listOf(*column));
  }
}

void dump(const Reading& reading) {
  Object object;
  object.add("format", reading.format() ? quoted(nameOf(*reading.format())) : "null");
  if (!reading.title().empty()) object.add("title", quoted(reading.title()));
  if (!reading) {
    const Place place = reading.error().place().value_or(Place{});
    object.add("error",
               quoted("line " + std::to_string(place.line) + ": " + reading.error().text()));
  } else {
    const Network& network = reading.value();
    const VEQNetwork& published = *network.published();
    object.add("directed", published.isDirected() ? "true" : "false");
    object.add("vertices", std::to_string(published.countVertices()));
    object.add("edges", listOf(published.countEdges(), [&](std::uint64_t e) {
                 const auto [from, to] = network.endsOf(e);
                 return "[" + std::to_string(from) + ", " + std::to_string(to) + "]";
               }));
    if (published.isEdgeWeighted())
      object.add("edge weights", listOf(*published.edgesWeightValues()));
    if (published.isVertexWeighted()) {
      object.add("vertex weights", listOf(*published.verticesWeightValues()));
    }
    addColumns(object, "vertex", *published.propertiesOfVertices());
    addColumns(object, "edge", *published.propertiesOfEdges());
  }
  addNotes(object, reading);
  std::cout << object.text();
}

int convert(const std::string& in, const std::string& out) {
  const Reading reading = readers::readNetwork(in);
  if (!reading) {
    std::cerr << reading.error().text() << '\n';
    return 1;
  }
  Outcome written = writeNetwork(reading.value(), out);
  if (written && fileFormatOfSuffix(out) == FileFormat::kCsv) {
    written = writeVertexTable(reading.value(), out + ".vertices");
  }
  if (!written) std::cerr << written.error().text() << '\n';
  return written ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 2 ? argv[1] : "";
  if (command == "convert" && argc == 4) return convert(argv[2], argv[3]);
  if (command != "dump") return 2;
  ReadOptions options;
  for (int i = 2; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--indices") {
      options.idsAreIndices = true;
    } else {
      dump(readers::readNetwork(argv[i], options));
      options.idsAreIndices = false;
    }
  }
  return 0;
}
