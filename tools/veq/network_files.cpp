#include "network_files.hpp"

#include <iostream>
#include <new>
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

namespace veq::tool {
namespace {

/// The file that is meant.
std::string fileFor(const std::string& name) {
  const std::string example = exampleNetwork(name);
  if (example.empty()) return name;
  note(name, "no such file; reading the example " + example);
  return example;
}

constexpr std::uint64_t kUsualNotes = 10;

ReadOptions readOptions(const Input& input) {
  ReadOptions options;
  if (input.from) options.format = static_cast<FileFormat>(*input.from);
  if (input.directed) options.directed = true;
  options.strict = input.strict;
  options.mostNotes = input.allNotes ? UINT64_MAX : input.quiet ? 0 : kUsualNotes;
  return options;
}

/// "FILE:LINE", or the file alone where no line is known.
std::string placeIn(const std::string& file, const std::optional<Place>& place) {
  return place && place->line > 0 ? file + ":" + std::to_string(place->line) : file;
}

void printNotes(const Reading& reading, const std::string& file) {
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

/// The bytes of a file of the format.
std::string bytesOf(const Shared<VEQNetwork>& network, const std::string& name, FileFormat format) {
  Result<std::string> text = networkText(Network(network), format);
  if (text) return std::move(text).value();
  if (text.error().kind() == ErrorKind::kMemory) throw std::bad_alloc();
  throw Failure(name, "not written, because " + text.error().text());
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

LoadedNetwork loadNetwork(const Input& input) {
  const std::string file = fileFor(input.file);
  const std::string name = inputName(file);
  const Reading reading = readWatched(file, name, readOptions(input));
  if (!input.quiet) printNotes(reading, name);
  if (!reading) {
    const Error& error = reading.error();
    if (error.kind() == ErrorKind::kMemory) throw std::bad_alloc();
    throw Failure(placeIn(name, error.place()), error.text());
  }
  if (input.directed && reading.format() != FileFormat::kList) {
    throw WrongUsage("--directed is for edge lists, and " + name + " is none");
  }
  return {reading.value().published(), name};
}

void saveNetwork(const Shared<VEQNetwork>& network, const Output& output) {
  const std::string name = outputName(output.file);
  const FileFormat format = formatToWrite(output.file, output.to);
  Losses losses;
  watch("writing " + printable(name), [&] {
    const std::string bytes = bytesOf(network, name, format);
    losses = lossesOf(*network, format, bytes);
    if (losses.isTotal()) throw Failure(name, "not written, because " + losses.total);
    writeTo(output.file, bytes);
  });
  for (const std::string& text : losses.notes) note(name, text);
}

void requireWritable(const Output& output) {
  static_cast<void>(formatToWrite(output.file, output.to));
  requireWritable(output.file);
}

void note(const std::string& file, std::string_view text) {
  std::cerr << "veq: " << printable(file) << ": " << printable(text) << '\n';
}

std::string sizeText(const VEQNetwork& network) {
  return counted(network.countVertices(), "vertex", "vertices") + ", " +
         counted(network.countEdges(), "edge", "edges") + ", " +
         (network.isDirected() ? "directed" : "undirected");
}

}  // namespace veq::tool
