// What all that read files share.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "support.hpp"
#ifdef VEQ_WITH_READERS
#include "veq/readers/reading.hpp"
#else
#include "veq/reading.hpp"
#endif

namespace veq::python {

// GraphML and what is compressed can be read where the library for them was built, too.
#ifdef VEQ_WITH_READERS
namespace reader = veq::readers;
#else
namespace reader = veq;
#endif

inline std::optional<FileFormat> formatNamed(std::optional<std::string_view> name) {
  if (!name) return std::nullopt;
  return named<FileFormat>(*name, "format",
                           {{"xnet", FileFormat::kXnet},
                            {"pajek", FileFormat::kPajek},
                            {"list", FileFormat::kList},
                            {"matrix-market", FileFormat::kMatrixMarket},
                            {"gml", FileFormat::kGml},
                            {"graphml", FileFormat::kGraphMl},
                            {"archive", FileFormat::kArchive},
                            {"csv", FileFormat::kCsv}});
}

inline const char* wordOf(NoteKind kind) {
  switch (kind) {
    case NoteKind::kTaken:
      return "taken";
    case NoteKind::kRepaired:
      return "repaired";
    case NoteKind::kLeftOut:
      break;
  }
  return "left out";
}

/// (kind, text, line, times)
using NoteTuple = Tuple<nb::str, nb::str, std::uint64_t, std::uint64_t>;
template <class AnyReading>
[[nodiscard]] nb::typed<nb::list, NoteTuple> notesOf(const AnyReading& reading) {
  nb::typed<nb::list, NoteTuple> notes;
  for (const Note& note : reading.notes()) {
    notes.append(nb::make_tuple(wordOf(note.kind), textOf(note.text), note.place.line, note.count));
  }
  return notes;
}

}  // namespace veq::python
