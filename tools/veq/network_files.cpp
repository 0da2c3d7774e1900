#include "network_files.hpp"

#include <iostream>
#include <new>
#include <type_traits>
#include <utility>

#include "data.hpp"
#include "example_data.hpp"
#include "failure.hpp"
#include "format.hpp"
#include "losses.hpp"
#include "progress_line.hpp"
#include "reader.hpp"
#include "streams.hpp"
#include "suggestions.hpp"
#include "text.hpp"
#include "vertex_names.hpp"

namespace veq::tool {
namespace {

/// The file that is meant.
std::string fileFor(const std::string& name) {
  const std::string example = exampleNetwork(name);
  if (example.empty()) return name;
  note(name, "no such file; reading the example " + example);
  return example;
}

/// "FILE:LINE", or the file alone where no line is known.
std::string placeIn(const std::string& file, const std::optional<Place>& place) {
  return place && place->line > 0 ? file + ":" + std::to_string(place->line) : file;
}

template <class AnyReading>
void printNotes(const AnyReading& reading, const std::string& file) {
  for (const Note& note : reading.notes()) {
    std::cerr << printable(placeIn(file, note.place)) << ": " << printable(note.text);
    if (note.count > 1) std::cerr << " (" << note.count << " times)";
    std::cerr << '\n';
  }
  if (reading.furtherNotes() > 0) {
    std::cerr << printable(file) << ": "
              << counted(reading.furtherNotes(), "more note", "more notes")
              << ", which --notes prints\n";
  }
}

/// Reads, and shows how far it has come.
Reading readWatched(const std::string& file, const std::string& name, ReadOptions options) {
  std::optional<Reading> reading;
  watch("reading " + printable(name), [&](const Progress& progress) {
    options.progress = progress;
    reading = reader::readNetwork(file, options);
  });
  return std::move(*reading);
}

std::uint64_t notesToKeep(const Input& input) {
  constexpr std::uint64_t kUsualNotes = 10;
  return input.allNotes ? UINT64_MAX : input.quiet ? 0 : kUsualNotes;
}

ReadOptions readOptions(const Input& input, std::uint64_t mostNotes) {
  ReadOptions options;
  if (input.from) options.format = static_cast<FileFormat>(*input.from);
  if (input.directed) options.directed = true;
  options.strict = input.strict;
  options.mostNotes = mostNotes;
  return options;
}

/// Throws why there is nothing, or what does not go with the format. Of memory that a walk-only
/// network cannot have the error says how much that is.
template <class AnyReading>
void requireRead(const Input& input, const AnyReading& reading, const std::string& name) {
  if (!reading) {
    const Error& error = reading.error();
    constexpr bool kTellsMemory = std::is_same_v<AnyReading, WalkReading>;
    if (!kTellsMemory && error.kind() == ErrorKind::kMemory) throw std::bad_alloc();
    throw Failure(placeIn(name, error.place()), error.text());
  }
  if (input.directed && reading.format() != FileFormat::kList) {
    throw WrongUsage("--directed is for edge lists, and " + name + " is none");
  }
}

/// Names the nameless, and says so.
void nameAll(const Shared<VEQNetwork>& network, const std::string& name) {
  const std::uint64_t named = numberNames(*network);
  if (named == 0) return;
  note(name, counted(named, "vertex without a name is", "vertices without a name are") +
                 " called by " + (named == 1 ? "its number" : "their numbers"));
}

/// The file, or the reason why there must be none.
Written writtenOrFailure(const Shared<VEQNetwork>& network, const std::string& name,
                         FileFormat format, const Output& output) {
  const bool withTable = !output.vertexTable.empty();
  Written written = writtenAs(network, format, withTable);
  if (written.losses.isTotal() && output.mayLose && format == FileFormat::kXnet &&
      countNameless(*network) > 0) {
    nameAll(network, name);
    written = writtenAs(network, format, withTable);
  }
  if (written.losses.isTotal()) {
    throw Failure(name, "not written, because " + written.losses.total + wayOut(network));
  }
  return written;
}

}  // namespace

void addInput(Command& command, const std::string& name, Input& input) {
  command.addPositional(name, input.file, "The network; - for standard input");
  command.addChoice("--from", "FORMAT", wordsForReading(), input.from,
                    "The format of " + name +
                        ", where it is not to be guessed: " + wordList(wordsForReading(), "or"));
  command.addFlag("--directed", input.directed, "Take an edge list for a list of arcs");
  command.addFlag("--strict", input.strict, "Refuse a file of which something is lost or mended");
  command.addFlag("--quiet", input.quiet, "Say nothing of what is odd in the file");
  command.addFlag("--notes", input.allNotes, "Say all that is odd, not only the first ten things");
}

void addOutputFormat(Command& command, Output& output) {
  command.addChoice("--to", "FORMAT", wordsForWriting(), output.to,
                    "The format to write: " + wordList(wordsForWriting(), "or"));
}

void addAnswer(Command& command, std::optional<std::size_t>& format) {
  command.addChoice("--format", "FORMAT", answerWords(), format,
                    "How to answer: " + wordList(answerWords(), "or"));
}

ReadFile readInput(const Input& input, std::uint64_t mostNotes) {
  const std::string file = fileFor(input.file);
  const std::string name = inputName(file);
  return {readWatched(file, name, readOptions(input, mostNotes)), name};
}

void requireRead(const Input& input, const ReadFile& file) {
  requireRead(input, file.reading, file.name);
}

LoadedNetwork loadNetwork(const Input& input) {
  const ReadFile file = readInput(input, notesToKeep(input));
  if (!input.quiet) printNotes(file.reading, file.name);
  requireRead(input, file);
  return {file.reading.value().published(), file.name};
}

LoadedWalkNetwork loadWalkNetwork(const Input& input, std::uint64_t walkBytes) {
  const std::string file = fileFor(input.file);
  const std::string name = inputName(file);
  WalkReadOptions options;
  options.reading = readOptions(input, notesToKeep(input));
  options.bytesBeside = walkBytes;
  options.announce = [&](const WalkNetworkSize& size) {
    if (input.quiet) return;
    note(name, "rows and neighbours take " + bytesText(size.bytes()) + ", the walk " +
                   bytesText(walkBytes * size.vertices));
  };
  std::optional<WalkReading> reading;
  watch("reading " + printable(name), [&](const Progress& progress) {
    options.reading.progress = progress;
    reading = reader::readWalkNetwork(file, options);
  });
  if (!input.quiet) printNotes(*reading, name);
  requireRead(input, *reading, name);
  return {reading->value(), name};
}

void saveNetwork(const Shared<VEQNetwork>& network, const Output& output) {
  const std::string name = outputName(output.file);
  const FileFormat format = formatToWrite(output.file, output.to);
  if (output.numberNames) nameAll(network, name);
  Written written;
  watch("writing " + printable(name), [&] {
    written = writtenOrFailure(network, name, format, output);
    if (!output.mayLose && written.losses.loses()) return;
    writeTo(output.file, written.bytes);
    if (output.vertexTable.empty()) return;
    const Outcome table = writeVertexTable(Network(network), output.vertexTable);
    if (!table) throw Failure(output.vertexTable, table.error().text());
  });
  for (const Difference& difference : written.losses.differences) note(name, difference.text);
  if (!output.mayLose && written.losses.loses()) {
    throw Failure(name, "not written, because of what it loses" + wayOut(network) +
                            "; --lossy writes it all the same");
  }
}

void requireWritable(const Output& output) {
  static_cast<void>(formatToWrite(output.file, output.to));
  requireWritable(output.file);
}

void note(const std::string& file, std::string_view text) {
  std::cerr << "veq: " << printable(file) << ": " << printable(text) << '\n';
}

std::string sizeText(std::uint64_t vertices, std::uint64_t edges, bool directed) {
  return counted(vertices, "vertex", "vertices") + ", " + counted(edges, "edge", "edges") + ", " +
         (directed ? "directed" : "undirected");
}

std::string sizeText(const VEQNetwork& network) {
  return sizeText(network.countVertices(), network.countEdges(), network.isDirected());
}

}  // namespace veq::tool
