#pragma once

#include <string>
#include <string_view>

#include "tests/formats/format_support.hpp"
#include "veq/formats/reading.hpp"

namespace veq::test {

inline std::string noteText(const Note& note) {
  constexpr std::string_view kKinds[] = {"taken", "repaired", "left out"};
  std::string text = std::to_string(note.place.line) + ":" + std::to_string(note.place.column) +
                     " " + std::string(kKinds[static_cast<std::size_t>(note.kind)]) + " x" +
                     std::to_string(note.count) + ": " + note.text;
  return text;
}

inline Texts notesOf(const Reading& reading) {
  Texts texts;
  for (const Note& note : reading.notes()) texts.push_back(noteText(note));
  return texts;
}

/// "directed 3: 0>1 1>2", with " w(1, 2.5)" where edges have weights, or the error with its place.
inline std::string summaryOf(const Reading& reading) {
  if (!reading) {
    const auto place = reading.error().place().value_or(Place{});
    return "error " + std::to_string(place.line) + ":" + std::to_string(place.column) + " " +
           reading.error().text();
  }
  const VEQNetwork& network = *reading.value().published();
  std::string text = network.isDirected() ? "directed " : "undirected ";
  text += std::to_string(network.countVertices()) + ":";
  if (network.countEdges() != 0) text += " " + edgesOf(network);
  if (network.isEdgeWeighted()) text += " w" + network.edgesWeightValues()->description();
  return text;
}

inline Texts vertexTexts(const Reading& reading, std::string_view key) {
  return vertexTexts(*reading.value().published(), key);
}
inline Texts edgeTexts(const Reading& reading, std::string_view key) {
  return edgeTexts(*reading.value().published(), key);
}

}  // namespace veq::test
